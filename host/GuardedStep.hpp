// Walks of host calls are made of guarded steps: a step that the host control library fails is
// reported and the walk decides whether to go on. Nothing is rolled back.
#pragma once
#include <string>
#include <utility>

#include "host/Log.hpp"
#include "keelson/Lib.hpp"

namespace Lanyx {

// Runs `step`; a library failure goes to `onFailure` with the exception. True when the step ran
// through.
template <class Step, class OnFailure> bool GuardedStep(Step&& step, OnFailure&& onFailure) {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const Keelson::Lib::KeelsonException& e) {
        std::forward<OnFailure>(onFailure)(e);
        return false;
    }
}

// The common case: the failure is logged at error level as `failure` followed by the library's
// reason ("Setting VlanID failed: " + reason).
template <class Step> bool LoggedStep(const std::string& failure, Step&& step) {
    return GuardedStep(std::forward<Step>(step), [&](const Keelson::Lib::KeelsonException& e) {
        Log(LOG_ERR, "%s%s", failure.c_str(), e.what());
    });
}

} // namespace Lanyx
