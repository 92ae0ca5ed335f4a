#pragma once

#include <QWidget>

#include <optional>

#include "frame/text_page.h"

class QLabel;
class QToolButton;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

class textdata;

// A reading page laid over the whole window: a content file under its
// caption, opened at a group that it highlights. Back, Escape or the
// mouse's back button close it.
class subcheck final : public QWidget {
    Q_OBJECT

public:
    subcheck(const TextPageEnvironment& environment, core::AppState& state,
             const platform::QtPictures& pictures, QWidget* host);
    ~subcheck() override;

    void prepare(const QString& caption, const QString& file, std::optional<long long> group);
    textdata* text() const { return text_; }

signals:
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void closeView();

    core::AppState& state_;
    const platform::QtPictures& pictures_;
    QLabel* caption_;
    QToolButton* back_;
    textdata* text_;
    bool open_ = false;
};

}  // namespace tilika::frame
