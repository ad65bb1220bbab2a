set(is_optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
set(is_gcc $<CXX_COMPILER_ID:GNU>)

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
              -Wformat=2
              -Wunused-const-variable
              $<$<BOOL:${MARROWPRESS_WERROR}>:-Werror>)

# A source is compiled together with others then; these two judge the names of one by itself, as they
# do in the presets without it.
set(is_unit $<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>)
target_compile_options(
    marrowpress_build_flags INTERFACE $<${is_unit}:-Wno-shadow>
                                      $<$<AND:${is_unit},${is_gcc}>:-Wno-subobject-linkage>)

# Documents come from strangers, and the module runs inside somebody else's process.
# scripts/check-hardening looks for all of it in what was built.
target_compile_options(marrowpress_build_flags INTERFACE -fstack-protector-strong)
target_link_options(marrowpress_build_flags INTERFACE LINKER:-z,relro LINKER:-z,now)
if(NOT MARROWPRESS_SANITIZE)
    # It needs the optimiser, and would hide calls from the sanitizers.
    target_compile_options(
        marrowpress_build_flags
        INTERFACE "$<${is_optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()

if(MARROWPRESS_SANITIZE)
    set(sanitize -fsanitize=${MARROWPRESS_SANITIZE} -fno-sanitize-recover=all
                 -fno-omit-frame-pointer)
    # The instrumentation hides from the compiler what is initialised.
    target_compile_options(marrowpress_build_flags
                           INTERFACE ${sanitize} $<${is_gcc}:-Wno-maybe-uninitialized>)
    target_link_options(marrowpress_build_flags INTERFACE ${sanitize})
endif()

# Such programs report what they meet, or count what they run.
string(FIND "${CMAKE_CXX_FLAGS_DEBUG}" --coverage coverage)
if(MARROWPRESS_SANITIZE OR MARROWPRESS_FUZZ OR NOT coverage EQUAL -1)
    set(MARROWPRESS_IS_INSTRUMENTED ON)
endif()

if(MARROWPRESS_FUZZ)
    # The fuzzers see which branches an input takes.
    target_compile_options(marrowpress_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
