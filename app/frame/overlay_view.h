#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

// A view laid over the whole window, under a bar with a back button and a
// caption, that the pages beneath wait for. Back, Escape or the mouse's
// back button close it.
class OverlayView : public QWidget {
    Q_OBJECT

public:
    ~OverlayView() override;

signals:
    void closed();

protected:
    OverlayView(core::AppState& state, const platform::QtPictures& pictures, QWidget* host);

    // The view under the bar, filling the rest.
    void setBody(QWidget* body);
    // Shows it in the look of the background in use, under the caption.
    void showOver(const QString& caption);
    void closeView();

    core::AppState& state() const { return state_; }
    const platform::QtPictures& pictures() const { return pictures_; }

    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    core::AppState& state_;
    const platform::QtPictures& pictures_;
    QLabel* caption_;
    QToolButton* back_;
    bool open_ = false;
};

}  // namespace tilika::frame
