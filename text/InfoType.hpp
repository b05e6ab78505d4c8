// One row of a selectable list of host objects together with its details page.
#pragma once
#include <cstddef>
#include <string>

namespace Lanyx {

class InfoType {
public:
    InfoType() = default;
    InfoType(const InfoType&) = delete;
    InfoType& operator=(const InfoType&) = delete;
    // Rows are moved into the lists that show them.
    InfoType(InfoType&&) = default;
    InfoType& operator=(InfoType&&) = default;
    virtual ~InfoType() = default;

    // The marked-up header line above a list of such rows.
    virtual std::string GetColumnHeader() = 0;
    // This object's row, each field cut to its column.
    virtual std::string GetRow() = 0;
    virtual std::string GetDetailsTitle() = 0;
    virtual std::string GetDetailsHeading() = 0;
    virtual const char* GetDetailsFooter();
    // The details page: every field whole.
    virtual std::string GetDetails() = 0;
};

// `field` if it has at most `keptWhole` characters, else its first `keptFirst` and "...".
std::string ShortenField(const std::string& field, size_t keptWhole, size_t keptFirst);

} // namespace Lanyx
