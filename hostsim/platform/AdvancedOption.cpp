// Advanced options ("advancedOptions") and user options ("userOptions") of the state.
#include "keelson/Adv.hpp"
#include "platform/HostState.hpp"

namespace TesselCtl::Adv {

namespace {

// Writes one option's value back; the option must still exist with the same type.
void StoreValue(const std::string& name, const char* type, const nlohmann::json& value) {
    HostSim::Platform::UpdateState([&](nlohmann::json& state) {
        HostSim::Platform::CheckFault(state, {"AdvancedOption::SetValue"});
        nlohmann::json& options = state["advancedOptions"];
        if (!options.is_object() || !options.contains(name))
            throw Keelson::Lib::KeelsonException("Advanced option " + name + " does not exist");
        nlohmann::json& option = options[name];
        if (option.value("type", "") != type)
            throw Keelson::Lib::KeelsonException("Advanced option " + name + " is not of type " +
                                                 type);
        if (value.is_number_integer()) {
            int64_t v = value.get<int64_t>();
            if ((option.contains("min") && v < option["min"].get<int64_t>()) ||
                (option.contains("max") && v > option["max"].get<int64_t>()))
                throw Keelson::Lib::KeelsonException("Value " + std::to_string(v) +
                                                     " out of range for " + name);
        }
        option["value"] = value;
    });
}

class IntegerOption : public Keelson::Adv::AdvancedIntegerOption {
public:
    IntegerOption(std::string name, int64_t value) : name_(std::move(name)), value_(value) {}
    std::string GetName() const override { return name_; }
    int64_t GetValue() const override { return value_; }
    void SetValue(int64_t value) override {
        StoreValue(name_, "integer", value);
        value_ = value;
    }

private:
    std::string name_;
    int64_t value_;
};

class StringOption : public Keelson::Adv::AdvancedStringOption {
public:
    StringOption(std::string name, std::string value)
        : name_(std::move(name)), value_(std::move(value)) {}
    std::string GetName() const override { return name_; }
    std::string GetValue() const override { return value_; }
    void SetValue(const std::string& value) override {
        StoreValue(name_, "string", value);
        value_ = value;
    }

private:
    std::string name_;
    std::string value_;
};

} // namespace

Keelson::Adv::AdvancedOption* AdvancedOptionImpl::FindOption(const std::string& name) {
    const auto document = HostSim::Platform::StateFor({"AdvancedOptionImpl::FindOption"});
    const nlohmann::json& state = *document;
    auto options = state.find("advancedOptions");
    if (options == state.end() || !options->is_object())
        return nullptr;
    auto it = options->find(name);
    if (it == options->end())
        return nullptr;
    const nlohmann::json& option = *it;
    const nlohmann::json value = option.value("value", nlohmann::json());
    if (option.value("type", "") == "string")
        return new StringOption(name, value.is_string() ? value.get<std::string>() : std::string());
    if (!value.is_number_integer())
        throw Keelson::Lib::KeelsonException("Advanced option " + name + " has no integer value");
    return new IntegerOption(name, value.get<int64_t>());
}

bool UserAdvancedOptionImpl::HasUserOption(const std::string& name) {
    const auto document = HostSim::Platform::StateFor({"UserAdvancedOptionImpl::HasUserOption"});
    const nlohmann::json& state = *document;
    auto options = state.find("userOptions");
    return options != state.end() && options->is_object() && options->contains(name);
}

} // namespace TesselCtl::Adv
