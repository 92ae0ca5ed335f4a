#pragma once

#include <QPixmap>
#include <QWidget>

#include <string>
#include <string_view>

class QPainter;
class QScrollArea;
class QToolButton;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

class Tab;

// Widgets that screens find again by number carry it as the property "tag".
void setTag(QWidget* widget, int tag);
int tag(const QObject* object);
// Text drawn on the widget, and typed into it, in this colour.
void setTextColor(QWidget* widget, const QColor& color);
QWidget* childWithTag(const QWidget* parent, int tag);

inline constexpr int kBackdropTag = -1900;
inline constexpr int kBackdropTextTag = -1899;

// The picture behind a screen, kept at the size of its parent and scaled to
// cover it.
class BackdropView final : public QWidget {
    Q_OBJECT

public:
    BackdropView(const platform::QtPictures& pictures, QWidget* parent);
    void setPicture(std::string picture);
    const std::string& picture() const { return picture_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap render(QSize pixels, qreal ratio) const;

    const platform::QtPictures& pictures_;
    std::string picture_;
    QPixmap rendered_;
};

// Applies the state's background: the look of the process and, given a view,
// its backdrop (made when it has none) or its plain colour. With bd the
// picture is the quieter one, for screens with much text.
void correctBackground(QWidget* view, bool bd, core::AppState& state,
                       const platform::QtPictures& pictures);
// Labels directly on the view, and its tagged text view, in the theme's
// text colour.
void correctBackgroundText(QWidget* view, const core::AppState& state);
// A scroll area that lets the screen's backdrop show through.
void showBackdropThrough(QScrollArea* scroll);

// The ring round a control that has the focus, while the keyboard is what
// moves the focus in its window, as desktop programs show it; used with a
// finger or a mouse alone the program shows none. `shape` is the control's
// outline; the ring lies just inside it, legible on any backdrop.
void paintFocusRing(QPainter& painter, const QWidget* widget, const QRectF& shape, qreal radius);

// A picture button of a screen's header (back, next), and its picture in
// the look of the background in use; set it again when that changes.
QToolButton* headerButton(const QString& tip, QWidget* parent);
// The header button of a page that leads back to the menu.
QToolButton* menuButton(Tab* page, const core::AppState& state);
// A header's button that says what it does in a word or a sign ("◀", "+").
QToolButton* textButton(const QString& text, const char* name, QWidget* parent);
// The bar at the top of a page: back to the menu, a step back, the caption,
// a step forward and the page's own action; any but the caption may be
// missing.
QWidget* captionBar(QWidget* back, QWidget* previous, QWidget* caption, QWidget* next,
                    QWidget* action, QWidget* parent);
void setHeaderButtonPicture(QToolButton* button, const platform::QtPictures& pictures,
                            const std::string& picture, const core::AppState& state);

// A text of the program's own in the state's language.
QString translatedText(const core::AppState& state, std::string_view text);

// Every label's text and every button's title in the state's language.
void translateView(QWidget* view, const core::AppState& state);

}  // namespace tilika::frame
