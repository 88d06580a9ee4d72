// A test of the real show on a desktop rig of its own (desktop_rig.h), in a
// folder set up as ShowProcess sets it up; skipped, saying why, where the rig
// cannot start.
#pragma once

#include "tests/support/desktop_rig.h"
#include "tests/support/show_process.h"

#include <memory>

class DesktopTest : public ShowProcess {
protected:
    void SetUp() override {
        ShowProcess::SetUp();
        if (IsSkipped()) {
            return;
        }
        std::string whyNot;
        rig_ = DesktopRig::start(kind(), dir_, &whyNot);
        if (rig_ == nullptr) {
            GTEST_SKIP() << "skipped: " << whyNot;
        }
    }
    // The rig the test runs on.
    virtual DesktopRig::Kind kind() const = 0;

    std::unique_ptr<DesktopRig> rig_;
};
