// Common base types of the host control library.
#include "keelson/Lib.hpp"

#include <cstdarg>
#include <cstdio>
#include <utility>

namespace Keelson {

const std::string emptyString;

namespace Lib {

KeelsonObject::~KeelsonObject() = default;

KeelsonException::KeelsonException(std::string text) : text_(std::move(text)) {}

const char* KeelsonException::what() const noexcept { return text_.c_str(); }

} // namespace Lib

namespace Misc {

std::string StrPrintf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, args);
        text.resize(static_cast<size_t>(length));
    }
    va_end(args);
    return text;
}

std::string StrCat(const char* a, size_t aLen, const char* b, size_t bLen, const char* c, size_t cLen,
                   const char* d, size_t dLen, const char* e, size_t eLen) {
    std::string text;
    for (auto [piece, length] : {std::pair{a, aLen}, {b, bLen}, {c, cLen}, {d, dLen}, {e, eLen}}) {
        if (piece != nullptr) text.append(piece, length);
    }
    return text;
}

} // namespace Misc

} // namespace Keelson
