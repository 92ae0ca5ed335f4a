#pragma once

#include <QObject>

class QWidget;

namespace tilika::frame {

// Keeps the dialogs of a window (message boxes, prompts, alerts) no wider
// than the window, which is phone-sized. A dialog sizes itself from the
// screen, up to half of it; one that comes out wider is narrowed to the
// window, its texts wrapped to the new width (inside words too long for a
// line, such as a long name), and centred over the window again.
class DialogWidthLimit final : public QObject {
public:
    explicit DialogWidthLimit(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fit(QWidget* dialog) const;

    QWidget* window_;
};

}  // namespace tilika::frame
