// Host control library: advanced options ("/UserVars/...").
#pragma once
#include <cstdint>
#include <string>

#include "keelson/Lib.hpp"

namespace Keelson::Adv {

class AdvancedOption : public virtual Lib::KeelsonObject {
public:
    virtual std::string GetName() const = 0;
};

class AdvancedIntegerOption : public virtual AdvancedOption {
public:
    virtual int64_t GetValue() const = 0;
    virtual void SetValue(int64_t value) = 0;
};

class AdvancedStringOption : public virtual AdvancedOption {
public:
    virtual std::string GetValue() const = 0;
    virtual void SetValue(const std::string& value) = 0;
};

} // namespace Keelson::Adv

namespace TesselCtl::Adv {

class AdvancedOptionImpl {
public:
    // The option of that name, owned by the caller; null when the host has none.
    static Keelson::Adv::AdvancedOption* FindOption(const std::string& name);
};

// User options of the host ("PXEBootEnabled", ...).
class UserAdvancedOptionImpl {
public:
    // Whether the host carries a user option of that name.
    static bool HasUserOption(const std::string& name);
};

} // namespace TesselCtl::Adv
