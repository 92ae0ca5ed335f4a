#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "diary/day_editor.h"
#include "diary/diary_store.h"
#include "frame/dic.h"
#include "medication/courses.h"

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace tilika::core {
struct Context;
}
namespace tilika::platform {
class ImageCodec;
}

namespace tilika::diary {

class DayCloud;
class PhotoSource;

// What the day editor needs of the program around it.
struct EditorServices {
    core::Context& context;
    frame::FormServices forms;
    const platform::ImageCodec& images;
    DayCloud& cloud;
    PhotoSource& photos;
    // A section that is not in the program yet.
    std::function<void(const std::string& caption)> comingSoon;
    // The reminders of the diary and of the medicines follow the saved day.
    std::function<void()> updateAlarms;
};

// The editor of one day: every entry of the catalogue as a row, the photo
// of the day last. On a phone's window it covers the window; on a wider one
// it is a panel beside the row it was opened from. Whatever was changed is
// saved when the user leaves the day: closing it, stepping to another day,
// or closing the window.
class noteEdit final : public QWidget {
    Q_OBJECT

public:
    // The width of the panel in a wide window, and its tallest height.
    static constexpr int kPanelWidth = 320;
    static constexpr int kPanelHeight = 900;

    noteEdit(EditorServices services, QWidget* window);
    ~noteEdit() override;

    // Opens the editor on a day of the child. `onClose` runs once it has
    // closed and saved; `anchor` is the row or button it was opened from, in
    // the window's coordinates.
    void prepare(const DayNote& day, const std::string& gid, std::function<void()> onClose,
                 std::optional<QRect> anchor);

    // The same for a day by its date, as the diary store gives it.
    void open(core::Date day, const std::string& gid, std::function<void()> onClose,
              std::optional<QRect> anchor);
    bool isOpen() const { return open_; }

    // Saves and closes; stays open, telling why, when the day could not be
    // saved.
    bool close();
    void prevDay();
    void nextDay();
    void selDay();

    // The row of a catalogue row by its index, and the pieces tests look at.
    DayEditor& editor() { return editor_; }
    QLabel* captionLabel() const { return caption_; }
    QWidget* rowView(std::size_t index) const;
    // The form opened from a row, while it is up.
    frame::dic* form() const { return form_; }
    void detailClick(std::size_t index);
    void photoClick();
    // The "Новая фотография" and "Из альбома" items of the photo menu.
    void actionPhoto(const QString& caption);
    // Takes a picture file as the day's photo, as a drop on the photo row does.
    void takePhotoFile(const QString& file);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void place();
    void reload();
    QWidget* buildRow(std::size_t index, QWidget* parent);
    QWidget* sliderRow(std::size_t index, QWidget* parent);
    QWidget* multiRow(std::size_t index, QWidget* parent);
    QWidget* photoRow(std::size_t index, QWidget* parent);

    void openForm(diary::EntryForm form, std::size_t index,
                  std::function<bool(const frame::FormAnswer&)> action);
    void editDicDialog(std::size_t index, int pos);
    // The times a course's doses fall at, worked out from its fields.
    std::string courseTimes(const std::map<std::string, std::string>& course) const;
    void editMulti2(std::size_t index, std::size_t pos);
    void afterEdit(std::size_t index, const frame::FormAnswer& answer);
    void setPhoto(const QImage& image);
    // Tells the user what a save came to; true when the rows were written.
    bool told(const DaySaved& saved);
    void moveTo(core::Date date);
    void message(const QString& text);
    int formHeight(int kind) const;
    std::string icon(const std::string& picture) const;

    EditorServices services_;
    medication::CourseReconciler courses_;
    DiaryStore store_;
    DayEditor editor_;
    std::function<void()> onClose_;
    std::optional<QRect> anchor_;
    bool open_ = false;

    QLabel* caption_;
    QScrollArea* scroll_;
    QWidget* content_ = nullptr;
    std::vector<QWidget*> rows_;
    QPointer<QWidget> formHost_;
    QPointer<frame::dic> form_;
};

}  // namespace tilika::diary
