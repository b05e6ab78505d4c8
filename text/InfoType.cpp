#include "text/InfoType.hpp"

namespace Lanyx {

const char* InfoType::GetDetailsFooter() {
    return "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}  ";
}

std::string ShortenField(const std::string& field, size_t keptWhole, size_t keptFirst) {
    if (field.size() <= keptWhole) {
        return field;
    }
    return field.substr(0, keptFirst) + "...";
}

} // namespace Lanyx
