#include "core/SmartCard.hpp"

#include <algorithm>

#include "host/Log.hpp"
#include "keelson/Hardware.hpp"

namespace Lanyx {

namespace {

void LogLookupFailure() {
    Log(LOG_ERR, "Error trying to lookup smart card tokens.");
}

} // namespace

std::string FindCardUser() {
    try {
        const auto& cards = TesselCtl::Hardware::GetSmartCardInfo();
        for (const std::string& slot : cards.GetAllSlots()) {
            Keelson::Hardware::SmartCardToken token;
            if (!cards.GetToken(slot, token))
                continue;
            for (const std::string& id : token.userIds)
                if (!id.empty())
                    return id;
        }
    } catch (const Keelson::Lib::KeelsonException&) {
        LogLookupFailure();
    }
    return {};
}

bool HasCardWithUser(const std::string& id) {
    try {
        const auto& cards = TesselCtl::Hardware::GetSmartCardInfo();
        for (const std::string& slot : cards.GetAllSlots()) {
            Keelson::Hardware::SmartCardToken token;
            if (cards.GetToken(slot, token) &&
                std::find(token.userIds.begin(), token.userIds.end(), id) != token.userIds.end())
                return true;
        }
    } catch (const Keelson::Lib::KeelsonException&) {
        LogLookupFailure();
    }
    return false;
}

} // namespace Lanyx
