// Host control library: common base types.
#pragma once
#include <cstddef>
#include <exception>
#include <string>

namespace Keelson {

extern const std::string emptyString;

namespace Lib {

class KeelsonObject {
public:
    virtual ~KeelsonObject();
};

class KeelsonException : public std::exception {
public:
    explicit KeelsonException(std::string text);
    const char* what() const noexcept override;

private:
    std::string text_;
};

} // namespace Lib

namespace Misc {
// printf into a new string.
std::string StrPrintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Joins two to five pieces, each given as pointer and length; unused pieces are null.
std::string StrCat(const char* a, size_t aLen, const char* b, size_t bLen, const char* c = nullptr,
                   size_t cLen = 0, const char* d = nullptr, size_t dLen = 0,
                   const char* e = nullptr, size_t eLen = 0);
} // namespace Misc

} // namespace Keelson
