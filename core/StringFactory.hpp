// The catalogue of numbered fixed texts, as the window classes see it. The catalogue itself
// belongs to the text layer; the core only knows the interface and asks a source that the
// program registers at start, so that it needs nothing above itself.
#pragma once
#include <cstdint>
#include <string>

namespace Lanyx {

class StringFactory {
public:
    // The entry's text, valid for the life of the process; the empty text for an unknown id.
    virtual const char* GetString(uint32_t id) = 0;

protected:
    // Never deleted through this interface: the one instance lives until the process ends.
    ~StringFactory() = default;
};

// The catalogue instance for a locale; defined by the text layer.
StringFactory* GetStringFactory(const std::string& locale);

using StringFactorySource = StringFactory* (*)(const std::string& locale);

// Makes `source` (normally &GetStringFactory) the one every Frame asks.
void SetStringFactorySource(StringFactorySource source);

// What a Frame stores in `strings`: the registered source's answer, or null without one.
StringFactory* FetchStringFactory(const std::string& locale);

} // namespace Lanyx
