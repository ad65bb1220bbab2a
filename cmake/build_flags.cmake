# What every target of this project is compiled with; linked privately, so that
# nothing of it reaches those who use a target.
add_library(marrowpress_build_flags INTERFACE)
target_compile_features(marrowpress_build_flags INTERFACE cxx_std_20)
target_compile_options(
    marrowpress_build_flags
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wshadow
              -Wnon-virtual-dtor
              -Woverloaded-virtual
              -Wconversion
              -Wno-sign-conversion
              $<$<BOOL:${MARROWPRESS_WERROR}>:-Werror>)
if(MARROWPRESS_SANITIZE)
    set(sanitize -fsanitize=${MARROWPRESS_SANITIZE} -fno-sanitize-recover=all
                 -fno-omit-frame-pointer)
    # The instrumentation hides from the compiler what is initialised.
    target_compile_options(marrowpress_build_flags INTERFACE ${sanitize}
                                                             -Wno-maybe-uninitialized)
    target_link_options(marrowpress_build_flags INTERFACE ${sanitize})
endif()
