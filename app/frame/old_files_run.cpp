#include "frame/old_files_run.h"

#include <QFutureWatcher>
#include <QTimer>
#include <QWidget>
#include <QtConcurrent/QtConcurrentRun>

#include <atomic>
#include <filesystem>

#include "core/context.h"
#include "core/settings_keys.h"
#include "frame/popup_panels.h"
#include "platform/folders.h"
#include "platform/settings_store.h"
#include "session/old_files.h"

namespace tilika::frame {

namespace {

// Often enough for the bar to move smoothly, rarely enough to cost nothing.
constexpr int kProgressIntervalMs = 50;

}  // namespace

// Shared with the worker, which may outlive the run when the window closes
// first.
struct OldFilesRun::Progress {
    std::atomic<std::size_t> done{0};
    std::atomic<std::size_t> total{0};
};

OldFilesRun* OldFilesRun::fromOldVersionFiles(QWidget* parent, Popups& popups,
                                              core::Context& context, FileHook afterEachFile) {
    if (context.settings.boolValue(core::keys::oldfiles)) {
        return nullptr;
    }
    auto* run = new OldFilesRun(parent, popups, context);
    run->start(std::move(afterEachFile));
    return run;
}

OldFilesRun::OldFilesRun(QWidget* parent, Popups& popups, core::Context& context)
    : QObject(parent),
      parent_(parent),
      popups_(popups),
      context_(context),
      progress_(std::make_shared<Progress>()) {}

OldFilesRun::~OldFilesRun() {
    if (shown_) {
        popups_.progressDialog(0, {}, {}, false, nullptr);
    }
}

void OldFilesRun::start(FileHook afterEachFile) {
    const std::filesystem::path documents = context_.folders.path(platform::SystemFolder::Document);
    auto* watcher = new QFutureWatcher<void>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, &OldFilesRun::finish);
    timer_ = new QTimer(this);
    connect(timer_, &QTimer::timeout, this, &OldFilesRun::showProgress);
    timer_->start(kProgressIntervalMs);
    // Even listing the folders waits on the disk, so the worker does that
    // too; the panel comes up only once there is something to rename.
    watcher->setFuture(
        QtConcurrent::run([documents, progress = progress_, hook = std::move(afterEachFile)] {
            const std::vector<session::FileRename> renames = session::oldFileRenames(documents);
            progress->total = renames.size();
            session::renameOldFiles(renames, [&](std::size_t done, std::size_t total) {
                progress->done = done;
                if (hook) {
                    hook(done, total);
                }
            });
        }));
}

void OldFilesRun::showProgress() {
    const std::size_t total = progress_->total;
    if (total == 0) {
        return;
    }
    shown_ = true;
    popups_.progressDialog(
        100.0 * static_cast<double>(progress_->done) / static_cast<double>(total),
        QStringLiteral("Подготовка к работе"), QStringLiteral("Идет подготовка фотографий ..."),
        true, parent_);
}

void OldFilesRun::finish() {
    timer_->stop();
    if (shown_) {
        popups_.progressDialog(0, {}, {}, false, nullptr);
        shown_ = false;
    }
    context_.settings.setBool(core::keys::oldfiles, true);
    context_.settings.synchronize();
    emit finished();
    deleteLater();
}

}  // namespace tilika::frame
