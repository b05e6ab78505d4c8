# Per-target warnings; -Werror only when asked for (CI and the README's commands ask).
option(LANYX_WERROR "Treat warnings as errors" OFF)
option(LANYX_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

function(lanyx_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(LANYX_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

if(LANYX_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()
