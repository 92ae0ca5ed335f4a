#pragma once

#include <QObject>

#include <cstddef>
#include <functional>
#include <memory>

class QTimer;
class QWidget;

namespace tilika::core {
struct Context;
}

namespace tilika::frame {

class Popups;

// Gives the photos and scans of the numbered era their profile's guid, once
// in the diary's life: behind the progress panel, the renames done on a
// worker thread so that the window keeps drawing and answering meanwhile.
// The mark that it is done is only set at the end, so a run cut short is
// taken up at the next start, from what it left.
class OldFilesRun final : public QObject {
    Q_OBJECT

public:
    // Called on the worker after each file with the number done and the
    // total; tests hold the worker there.
    using FileHook = std::function<void(std::size_t done, std::size_t total)>;

    // Starts the run unless it was done already; nullptr then. The run
    // belongs to `parent` and goes away when finished.
    static OldFilesRun* fromOldVersionFiles(QWidget* parent, Popups& popups, core::Context& context,
                                            FileHook afterEachFile = {});

    ~OldFilesRun() override;

signals:
    void finished();

private:
    struct Progress;

    OldFilesRun(QWidget* parent, Popups& popups, core::Context& context);
    void start(FileHook afterEachFile);
    void showProgress();
    void finish();

    QWidget* parent_;
    Popups& popups_;
    core::Context& context_;
    std::shared_ptr<Progress> progress_;
    QTimer* timer_ = nullptr;
    bool shown_ = false;
};

}  // namespace tilika::frame
