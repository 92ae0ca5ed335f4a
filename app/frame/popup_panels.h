#pragma once

#include <QDateTime>
#include <QFrame>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "frame/popups.h"
#include "frame/text_page.h"

class QLabel;
class QListWidget;
class QProgressBar;
class QStackedWidget;
class QPushButton;
class QTextEdit;
class QVBoxLayout;
class QToolButton;
class QWidget;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
class SettingsStore;
}  // namespace tilika::platform

namespace tilika::frame {

class WheelPicker;
class textdata;

// The small shared dialogs: message boxes, the grid menu, pickers, the text
// prompt, tooltips, progress, hints and the welcome page. A caller passes
// the parent it sits on and an action; the dialog calls the action with its
// result. One popup is open at a time, and while it is, the state says so
// (the pager won't swipe under it).
//
// Panels lie over the parent's window on a dim layer. On a phone-sized
// window a panel takes the whole width; on a larger one it is a panel of
// its own size in the middle.
class Popups final : public QObject {
    Q_OBJECT

public:
    using Delegate = std::function<void(int tag, int button)>;
    using TextDelegate = std::function<void(int tag, int button, const QString& text)>;
    using MenuAction = std::function<void(const QString& sender, const QString& caption)>;
    using DetailAction = std::function<void(int parentFlag, const QVariant& value)>;
    using IndexAction = std::function<void(int index)>;

    Popups(core::AppState& state, platform::SettingsStore& settings,
           const platform::QtPictures& pictures, TextPageEnvironment environment);
    ~Popups() override;

    // Message boxes. Buttons: "ОК"; "Нет" (0) and "Да" (1); "Отменить" (0)
    // and "Ok" (1) with a text field.
    void message(const QString& text, const QString& caption, int tag, QWidget* parent,
                 Delegate delegate = {});
    void messageAsk(const QString& text, const QString& caption, int tag, QWidget* parent,
                    Delegate delegate);
    void messageAskString(const QString& text, const QString& caption, int tag, QWidget* parent,
                          TextDelegate delegate);

    // A grid of picture buttons from "Caption<td>picture.png<tr>...". The
    // action gets the sender and the chosen caption, half a second after
    // the panel closed.
    void popupMenu(const QString& items, QWidget* parent, MenuAction action, const QString& sender);

    // A picker: kinds 1 to 3 take and give a QDateTime, kinds 4 to 6 a text
    // "%@<td>%@".
    void popupDetail(int kind, const QString& caption, const QVariant& old, QWidget* parent,
                     int parentFlag, DetailAction action);
    // A list of captions; the action gets the chosen row as "%d".
    void popupDetailList(const QString& caption, const QString& oldValue, QWidget* parent,
                         int parentFlag, DetailAction action, std::vector<ListEntry> data);
    // Lines cut by "<br>" and "Отменить" last; the action gets the position.
    void selectList(const QString& title, const QString& buttons, QWidget* parent,
                    IndexAction action);

    // An empty panel of the height over a dim layer with a blurred copy of
    // the screen, to fill and show; the "free" one goes without the blur.
    QFrame* popupWindowCreate(int height, QWidget* parent);
    void popupWindowShow();
    void popupWindowHide();
    QFrame* popupFreeWindowCreate(int height, QWidget* parent);
    void popupFreeWindowShow();
    void popupFreeWindowHide();
    void popupBlurShow();
    void popupBlurHide();
    // The pages of the open panel, made on first use; ppNext and ppBack
    // slide between them.
    QStackedWidget* popupPages();
    void ppNext();
    void ppBack();
    // Closes the open panel with a short fade.
    void ppCancel();

    void askText(const QString& title, const QString& help, const QString& text,
                 const QString& commit, QWidget* parent, std::function<void()> action);
    // The prompt's text, or "" when there is none.
    QString askTextGetResult() const;

    // Group 1 of a content file, with buttons through the other groups.
    void popupTooltip(const QString& file, QWidget* parent);

    // Shows or updates the progress panel; with show false it closes.
    void progressDialog(double percent, const QString& caption, const QString& message, bool show,
                        QWidget* parent);

    // The hint button at the right of a header, and its fading in and out.
    QToolButton* helpInit(QWidget* header, std::function<void()> action);
    void helpShow(QWidget* header, bool show);
    // Offers a page's help once: a second after the page has first come up,
    // while the key is open, the hint turns in at the right of the page's
    // caption bar; pressing it closes the key for good and opens the help.
    void offerHelp(QWidget* page, const std::string& key, std::function<void()> open);
    // A hand that shows a gesture on the view.
    void animateHelp(QWidget* view, const QString& mode);

    // The welcome page; a numbered button calls the action with its number.
    void firstStart(QWidget* parent, IndexAction action, bool newversion);

    // Where reading pages find their content and pictures.
    const TextPageEnvironment& environment() const { return environment_; }

    // What is open, for tests and for screens that ask.
    int ppFlag() const { return ppFlag_; }
    QFrame* panel() const { return panel_; }
    QWidget* dimLayer() const { return layer_; }
    bool isOpen() const { return layer_ != nullptr; }

private:
    // A text of the program's own, in the language of the state.
    QString own(const char* source) const;
    QString translated(const QString& text) const;
    QPushButton* pictureButton(const QString& picture, const QString& caption, QWidget* parent);
    QPushButton* capButton(const char* picture, QWidget* parent);
    void onPicture(QPushButton* button, const char* picture) const;
    // The head of a picker panel; answers its OK button.
    QPushButton* pickerHead(const QString& caption, QFrame* panel, QVBoxLayout* layout);
    void close(bool animated = false);
    void slide(int step);
    void setOpen(bool open);
    void closeAfter(std::function<void()> then, int delayMs);

    core::AppState& state_;
    platform::SettingsStore& settings_;
    const platform::QtPictures& pictures_;
    TextPageEnvironment environment_;

    int ppFlag_ = 0;
    QPointer<QWidget> layer_;
    QPointer<QWidget> parent_;
    QPointer<QFrame> panel_;
    QPointer<QTextEdit> askField_;
    QPointer<QWidget> progress_;
    std::unique_ptr<WheelPicker> wheels_;
};

}  // namespace tilika::frame
