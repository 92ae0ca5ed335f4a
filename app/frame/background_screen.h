#pragma once

#include <QWidget>

#include <functional>
#include <vector>

#include "frame/backgrounds.h"

class QAbstractButton;
class QToolButton;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

// The chooser of the program's background: a strip of the pictures, the
// one in use marked. A tap applies a picture at once, so the choice can be
// seen before leaving.
class background final : public QWidget {
    Q_OBJECT

public:
    using Choose = std::function<void(long long id)>;

    background(const QString& caption, std::vector<BackgroundItem> items, core::AppState& state,
               const platform::QtPictures& pictures, Choose choose, QWidget* parent);

    // The picture of a background, to tap.
    QAbstractButton* item(long long id) const;
    // Draws the screen in the look of the background now in use.
    void refresh();

signals:
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    core::AppState& state_;
    const platform::QtPictures& pictures_;
    Choose choose_;
    std::vector<QAbstractButton*> items_;
    QToolButton* back_;
};

}  // namespace tilika::frame
