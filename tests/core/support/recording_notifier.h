#pragma once

#include <vector>

#include "platform/notifier.h"

namespace tilika::test {

// A notifier that keeps what it is given, in order, for a test to read.
class RecordingNotifier final : public platform::Notifier {
public:
    std::vector<platform::LocalNotification> scheduled() const override { return pending; }
    void cancelAll() override {
        pending.clear();
        ++cancels;
    }
    void schedule(const platform::LocalNotification& notification) override {
        pending.push_back(notification);
    }

    std::vector<platform::LocalNotification> pending;
    int cancels = 0;
};

}  // namespace tilika::test
