// The widget tests' world: the shared off-screen screen, a host root of their own for the
// system log, and a catalogue that is a table the tests fill.
#pragma once
#include <map>
#include <string>

#include "CursesScreen.hpp"
#include "HostRoot.hpp"
#include "core/StringFactory.hpp"

namespace Lanyx::Testing {

class TableFactory : public StringFactory {
public:
    const char* GetString(uint32_t id) override {
        auto it = entries.find(id);
        return it == entries.end() ? "" : it->second.c_str();
    }
    std::map<uint32_t, std::string> entries;
};

inline TableFactory& Catalogue() {
    static TableFactory factory;
    return factory;
}

inline const bool catalogueInstalled = [] {
    SetStringFactorySource([](const std::string&) -> StringFactory* { return &Catalogue(); });
    return true;
}();
inline LanyxTest::ProgramHost* const textRoot = LanyxTest::AddProgramHost();
inline CursesScreen* const textScreen = AddCursesScreen();

inline std::string SystemLog() {
    return textRoot->Host().Read("/var/log/syslog.log");
}

} // namespace Lanyx::Testing
