#pragma once

#include <QScrollArea>

namespace tilika::frame {

// The scroll area every scrolling view of the program is made of.
//
// What scrolls here lies over the screen's backdrop or a card and fills no
// background of its own: whatever it shows, it paints. QScrollArea::setWidget
// turns the content's autoFillBackground on, and Qt then counts the content
// opaque whenever its palette is, even when it skips that fill (a content
// with WA_TranslucentBackground does). An opaque widget that moves has its
// pixels copied on the screen instead of the backdrop under it being drawn
// again, so every scroll step left shifted copies of rows and text behind.
// The content's fill goes as soon as the area shows it.
class ScrollView : public QScrollArea {
    Q_OBJECT

public:
    explicit ScrollView(QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace tilika::frame
