#pragma once

// The timeline's benchmarks compare the sample child with a twin of the
// same birthday whose diary is empty.

#include <string>

#include "core/ids.h"
#include "diary/profiles.h"
#include "diary_sample.h"

namespace tilika::bench {

// The twin's guid; its profile is written the first time it is asked for.
inline const std::string& emptyTwin() {
    static const std::string gid = [] {
        Sample& s = sample();
        const std::string twin = core::newID();
        diary::Profiles profiles(s.context());
        diary::SetupRecord record = profiles.loadSetupData(twin);
        record.name = "Близнец";
        record.sbirthdate = s.birth();
        if (!profiles.saveSetupData(diary::saveflag::cloud, record, twin)) {
            return std::string();
        }
        return twin;
    }();
    return gid;
}

}  // namespace tilika::bench
