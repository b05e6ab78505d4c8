// Common base types of the host control library.
#include "keelson/Lib.hpp"

#include <cstdarg>
#include <cstdio>
#include <utility>

#include "platform/Records.hpp"

namespace Keelson {

const std::string emptyString;

namespace Lib {

KeelsonObject::~KeelsonObject() = default;

KeelsonException::KeelsonException(std::string text) : text_(std::move(text)) {}

const char* KeelsonException::what() const noexcept {
    return text_.c_str();
}

} // namespace Lib

namespace Misc {

std::string StrPrintf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = HostSim::Platform::VFormat(format, args);
    va_end(args);
    return text;
}

std::string StrCat(const char* a, size_t aLen, const char* b, size_t bLen, const char* c,
                   size_t cLen, const char* d, size_t dLen, const char* e, size_t eLen) {
    std::string text;
    for (auto [piece, length] : {std::pair{a, aLen}, {b, bLen}, {c, cLen}, {d, dLen}, {e, eLen}}) {
        if (piece != nullptr)
            text.append(piece, length);
    }
    return text;
}

} // namespace Misc

} // namespace Keelson
