#pragma once

#include <QWidget>

#include <memory>
#include <optional>

#include "frame/text_page.h"
#include "platform/qt_canvas.h"

class QScrollArea;
class QVariantAnimation;

namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

class TextSurface;

// A page of reading matter on the screen: it scrolls (kinetically under a
// finger), tells its owner of taps on links and check boxes through its
// signals, and fades a highlight or dims groups when asked. What is on the
// page, and where, is the core's TextPage; this view only shows it.
class textdata final : public QWidget {
    Q_OBJECT

public:
    textdata(const TextPageEnvironment& environment, const platform::QtPictures& pictures,
             QWidget* parent = nullptr);
    ~textdata() override;

    // The page itself, for its settings and check marks; after changing
    // marks through it, call refresh().
    TextPage& page() { return *page_; }
    const TextPage& page() const { return *page_; }

    void prepareTextFromFile(const QString& name, bool withscroll,
                             std::optional<QString> append = std::nullopt);
    void prepareTextFromString(const QString& markup, bool withscroll);
    void prepareTextFromJSONString(const QString& json, bool withscroll,
                                   std::optional<QString> append = std::nullopt);

    // Scroll to a group, with the highlight fading in over it or without.
    // Both answer the position scrolled to, or -1 when there is no group;
    // a page that doesn't scroll only answers, and its owner scrolls.
    long long hiliteGroup(long long group, bool justthis);
    long long visibleGroup(long long group, bool justthis);
    void alphaGroup(long long group, bool justthis);
    // Flips the box of this tag, as an owner does on checkClicked.
    void checkClick(long long tag);
    // Draws anew after the page's marks changed.
    void refresh();

    QScrollArea* scrollArea() const { return scroll_; }
    TextSurface* surface() const { return surface_; }
    // Where an element of the page is inside this view, for taps in tests
    // and for accessibility.
    QPoint viewPosition(const platform::Rect& element) const;

signals:
    void linkClick(qlonglong tag);
    void openLink(const QString& address);
    void checkClicked(qlonglong tag);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class TextSurface;
    void pageChanged();
    void fitWidth();
    void fitHeight();
    void tapped(const PageHit& hit);
    long long scrollToGroup(long long position);

    std::unique_ptr<platform::QtCanvas> metrics_;
    std::unique_ptr<TextPage> page_;
    QScrollArea* scroll_;
    TextSurface* surface_;
    QVariantAnimation* highlightFade_;
    QVariantAnimation* dimming_;
    QVariantAnimation* scrolling_;
};

// The scrolled content of a textdata: paints the visible part of the page
// and turns presses into taps.
class TextSurface final : public QWidget {
    Q_OBJECT

public:
    TextSurface(textdata& owner, const platform::QtPictures& pictures);

    double highlightOpacity = 0;
    double dimProgress = 1;

    // Forgets a press, so its release is no tap.
    void cancelPress();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    textdata& owner_;
    const platform::QtPictures& pictures_;
    std::optional<PageHit> pressed_;
    QPointF pressPoint_;
};

}  // namespace tilika::frame
