#pragma once

#include <QImage>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/date.h"
#include "frame/form_values.h"
#include "session/form_dialogs.h"

class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace tilika::core {
struct AppState;
class Dates;
}  // namespace tilika::core
namespace tilika::diary {
class ReferenceLists;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

class Popups;

// What every form needs of the program around it.
struct FormServices {
    core::AppState& state;
    const core::Dates& dates;
    Popups& popups;
    const platform::QtPictures& pictures;
    // The reference lists that list rows pick from and add to; without them
    // lists are what the caller put in the rows.
    diary::ReferenceLists* lists = nullptr;
};

// What a form hands back to its caller: the caller's tag, and the rows with
// their values; an action row also names itself as the sender.
struct FormAnswer {
    int parentFlag = 0;
    FormRows rows;
    std::optional<std::size_t> sender;  // the row, from 0
};

// The data-entry screen: a scrolling column of rows, one for each descriptor,
// laid over its parent widget, which owns it: a screen's window, or the form
// that opened it. The caller builds the rows (or names a ready-made form), and
// gets them back with their values when the user presses OK.
//
// Rows are numbered from 1 in their order; the control of row n carries the
// tag n, the value label of a date or time row n + 1000, a button of a times
// row row * 1000 + position, and the teeth 701 to 720.
class dic final : public QWidget {
    Q_OBJECT

public:
    // Answers whether the form may close. A caller whose save failed tells
    // the user and answers false: the form stays, with what was typed.
    using Action = std::function<bool(const FormAnswer& answer)>;

    // The parent owns the form: a screen's window, or another form.
    explicit dic(FormServices services, QWidget* parent);
    ~dic() override;

    // Opens the form; a host in another window moves it there. Each row
    // with a field takes its value from the defaults. The action is called
    // on OK, and only while `target` lives (no target: always); the form
    // closes when it answers true.
    void prepare(FormRows rows, const QString& caption, QWidget* host, QObject* target,
                 int parentFlag, const std::map<std::string, std::string>& defaults, Action action);
    // A ready-made form.
    void detailPrepare(const session::DetailRequest& request, QWidget* host, QObject* target,
                       Action action);

    // A list form's items, for a form whose value is "WASADDED".
    void detailClearList() { list_.clear(); }
    void detailAddToList(std::string index, std::string cap, bool checked, int deleted);
    // Items shown highlighted in list rows.
    void detailSetHiliteList(std::vector<std::string> indices) { hiliteData_ = std::move(indices); }
    // The child the form is about; its documents are kept under its guid.
    void setGid(std::string gid) { gid_ = std::move(gid); }

    // Rows that follow others: after the row with field `changed` took a new
    // value, the owner may set other rows from it (a course's times follow
    // its doses a day and its meals). Rows it changes are drawn afresh.
    using FollowRows = std::function<void(FormRows& rows, std::string_view changed)>;
    void setFollowRows(FollowRows follow) { followRows_ = std::move(follow); }

    // Asks the owner for the document screen of a documents row: its title,
    // the prefix of the files, and the value. The owner calls back with the
    // new value.
    struct DocumentsRequest {
        QString caption;
        QString prefix;
        QString value;
    };
    using DocumentsOpener = std::function<void(const DocumentsRequest& request,
                                               std::function<void(std::string value)> done)>;
    void setDocumentsOpener(DocumentsOpener opener) { documents_ = std::move(opener); }
    // Where a photo row gets a picture from the user; by default a file dialog.
    using PhotoPicker = std::function<std::optional<QImage>(QWidget* parent)>;
    void setPhotoPicker(PhotoPicker picker) { photoPicker_ = std::move(picker); }

    // The rows, with the values as they stand.
    const FormRows& detailAr() const { return detailAr_; }
    std::size_t posByField(std::string_view field) const;
    std::optional<std::string> fieldValue(std::string_view field) const;
    // Writes a date or time row's value (kinds 17, 24, 110 and 1003 to 1005),
    // and lets a span follow its start or end.
    void changeDetail(std::size_t row, const QString& value);

    // Reads every editable control back into its row.
    void correctField();
    // OK: checks the required rows and answers the caller, or tells what is
    // missing and stays; it stays too when the caller could not save.
    void closeOk();
    // Closes without an answer.
    void closeForm();
    bool isOpen() const { return open_; }

    // The sub-form a list row opened, while it is up.
    dic* subForm() const { return sub_; }
    // The running stopwatch's overlay, or none once it was stopped.
    QWidget* stopwatchOverlay() const { return overlay_; }

signals:
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildFrame();
    void updateData(bool keepPlace = true);
    QWidget* buildRow(std::size_t index, QWidget* parent);
    QWidget* momentRow(std::size_t index, QWidget* parent);
    // A column headed by the row's icon and caption.
    QVBoxLayout* captionedColumn(const FormRow& row, QWidget* widget) const;
    QWidget* textRow(std::size_t index, QWidget* parent);
    QWidget* listRow(std::size_t index, QWidget* parent);
    QWidget* timesRow(std::size_t index, QWidget* parent);
    QWidget* sliderRow(std::size_t index, QWidget* parent);
    QWidget* photoRow(std::size_t index, QWidget* parent);
    QWidget* teethRow(std::size_t index, QWidget* parent);
    QWidget* tapRow(std::size_t index, QWidget* parent);
    QWidget* removalButton(std::size_t index, QWidget* parent);

    void detailClick(std::size_t index);
    void changeDate(std::size_t index, const QDateTime& value);
    void changeData(std::size_t index, const QString& value);
    void replaceSubForm();
    void subDetail(std::size_t index);
    void subDetailCommit(std::size_t index, const FormRows& rows);
    void timeClick(std::size_t index, std::size_t position);
    void addToList(std::size_t index);
    bool afterAdd(std::size_t index, const FormRows& rows);
    void photoClick(std::size_t index);
    void actionClick(std::size_t index);
    void followRows(std::string_view changed);
    const std::vector<ListRow>& listOf(const FormRow& row);

    void startClick(std::size_t index);
    void stopClick();
    void onStartTimer();
    // Ends a running stopwatch without writing anything.
    void dropStopwatch();

    QString own(const char* text) const;
    QString shown(const std::string& text) const;
    std::string cardIcon(const std::string& picture) const;
    void answer(std::optional<std::size_t> sender, FormRows rows);

    FormServices services_;
    QPointer<QObject> gparent_;
    Action gaction_;
    int gParentFlag_ = 0;
    bool hasTarget_ = false;
    bool open_ = false;
    // Counts the openings, so an answer that comes late finds out whether it
    // is still for the rows it was asked about.
    std::uint64_t generation_ = 0;

    FormRows detailAr_;
    std::vector<ListRow> list_;
    std::vector<std::string> hiliteData_;
    std::string gid_;
    FollowRows followRows_;
    DocumentsOpener documents_;
    PhotoPicker photoPicker_;
    // The reading lists of list rows, by reference list.
    std::map<int, std::vector<ListRow>> readingLists_;
    // The marks of the teeth rows, by row, as the user left them.
    std::map<std::size_t, std::vector<bool>> teeth_;

    QLabel* title_ = nullptr;
    QPushButton* ok_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QWidget* content_ = nullptr;
    std::vector<QWidget*> controls_;  // by row, from 0
    std::vector<QLabel*> values_;     // value labels by row, or null

    // A form opened from this one: a list row's choice, or a new list item.
    QPointer<dic> sub_;

    // The stopwatch: which row it runs for, when it started as the clock
    // tells, and the overlay that shows it.
    std::size_t startPos_ = 0;
    core::Date lastStartInterval_{};
    QPointer<QWidget> overlay_;
    QLabel* elapsed_ = nullptr;
    QTimer tick_;
};

}  // namespace tilika::frame
