#pragma once

#include <QPointer>
#include <QRect>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "diary/diary_store.h"
#include "diary/note_table.h"
#include "frame/tab.h"
#include "medication/courses.h"

class QFutureWatcherBase;
class QLabel;
class QLineEdit;
class QProgressBar;
class QStackedWidget;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::frame {
class Popups;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::diary {

// What the diary page needs of the program.
struct NoteServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    // A section still to come, by its caption.
    std::function<void(const std::string& caption)> comingSoon;
};

// The diary page: one year of the child's life, its days grouped by months
// of life, with a search, the years to step through, and a way into each
// day and into today.
class note final : public frame::Tab {
    Q_OBJECT

public:
    // Opens the day editor on a day, by the row or button pressed.
    using DayOpener = std::function<void(const DayNote& day, QRect anchor)>;

    note(NoteServices services, QWidget* parent);
    ~note() override;

    void activateView(const std::string& gid) override;
    void activate() override;
    void setDayOpener(DayOpener opener) { opener_ = std::move(opener); }

    // Loads the year again. `anew` means the page is being opened, and the
    // year goes back to the child's present one. Nothing happens while a
    // load is under way, unless it is for another child.
    void prepare(const std::string& gid, bool anew);
    // What the day editor calls when it closes: the same year, scrolled
    // back to the day that was opened.
    void reload() { prepare(gid_, false); }
    // The child whose diary is shown.
    const std::string& gid() const { return gid_; }

    void updateSearch(const QString& text);
    void changeYear(int step);
    void addNote();
    void twoTouch();

    bool generating() const { return generating_; }
    // Whether every day of the year is laid out; the table opens before.
    bool laidOut() const { return laidOut_; }
    int gyear() const { return gyear_; }
    NoteListView* table() const { return table_; }
    const NoteYear& year() const { return year_; }

signals:
    // A load has come to the screen (the table or the empty text shows).
    void loaded();

private:
    struct Loaded;
    void startLoad();
    int expectedRowWidth() const;
    void finishLoad(int generation, Loaded& result);
    void finishLayout();
    void showYear(bool scroll);
    void scrollToRow(int flatRow);
    void editNote(int row, QPoint inRow);
    void deleteRow(int row);
    void openDChat(const std::string& data);
    void applyLook();

    NoteServices services_;
    medication::CourseReconciler courses_;
    DiaryStore store_;
    DayOpener opener_;

    std::string gid_;
    int gyear_ = 1;
    bool generating_ = false;
    bool laidOut_ = true;
    int generation_ = 0;
    QPointer<QFutureWatcherBase> loading_;
    NoteYear year_;
    TablePosition todayDic_;
    std::optional<core::Date> lastDic_;
    std::optional<core::Date> lastTwoDate_;
    QString searchText_;

    QLabel* caption_;
    QToolButton* back_;
    QToolButton* yearBack_;
    QToolButton* yearNext_;
    QToolButton* add_;
    QLineEdit* search_;
    QToolButton* searchButton_;
    QToolButton* cancel_;
    QStackedWidget* pages_;
    NoteModel* model_;
    NoteDelegate* delegate_;
    NoteListView* table_;
    QLabel* empty_;
    QLabel* spinnerText_;
    QProgressBar* spinner_;
};

}  // namespace tilika::diary
