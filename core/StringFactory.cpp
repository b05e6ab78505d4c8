#include "core/StringFactory.hpp"

namespace Lanyx {

namespace {
StringFactorySource registeredSource = nullptr;
}

void SetStringFactorySource(StringFactorySource source) {
    registeredSource = source;
}

StringFactory* FetchStringFactory(const std::string& locale) {
    return registeredSource ? registeredSource(locale) : nullptr;
}

} // namespace Lanyx
