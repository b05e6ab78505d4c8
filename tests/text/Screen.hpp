// The widget tests' world: the shared off-screen screen, a host root of their own for the
// system log, and a catalogue that is a table the tests fill.
#pragma once
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "CursesScreen.hpp"
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

class TextRoot : public ::testing::Environment {
public:
    void SetUp() override {
        char pattern[] = "/tmp/lanyx-text-root-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root = pattern;
        std::filesystem::create_directories(root + "/var/log");
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);
        SetStringFactorySource([](const std::string&) -> StringFactory* { return &Catalogue(); });
    }
    void TearDown() override { std::filesystem::remove_all(root); }
    std::string root;
};

inline TextRoot* const textRoot =
    static_cast<TextRoot*>(::testing::AddGlobalTestEnvironment(new TextRoot));
inline CursesScreen* const textScreen = AddCursesScreen();

inline std::string SystemLog() {
    std::ifstream file(textRoot->root + "/var/log/syslog.log");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace Lanyx::Testing
