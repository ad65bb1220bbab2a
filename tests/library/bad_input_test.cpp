#include <algorithm>

#include "tests/library/library_fixture.h"

namespace marrowpress {
namespace {

class LibraryInputTest : public LibraryTest, public testing::WithParamInterface<LibraryFunction> {
protected:
    /// The code of a call whose result has the same, and a text.
    int codeOf(const char* request, const mp_options* given) const {
        mp_result* made = nullptr;
        const int code = GetParam()(request, given, &made);
        const ResultPtr result(made);
        EXPECT_EQ(mp_result_code(made), code);
        EXPECT_STRNE(mp_result_error(made), "");
        EXPECT_EQ(mp_result_status(made), MP_NO_STATUS);
        return code;
    }
};

TEST_P(LibraryInputTest, NullIsInvalid) {
    EXPECT_EQ(GetParam()("{}", &options, nullptr), MP_INVALID);
    EXPECT_EQ(codeOf(nullptr, &options), MP_INVALID);
    EXPECT_EQ(codeOf(nullptr, nullptr), MP_INVALID);
}

TEST_P(LibraryInputTest, TextsAreUtf8) {
    EXPECT_EQ(codeOf("\xC3(", &options), MP_INVALID);
    const char* const catalog = "\xFF";
    options.catalogs = &catalog;
    options.catalog_count = 1;
    EXPECT_EQ(codeOf("{}", &options), MP_INVALID);
}

TEST_P(LibraryInputTest, CatalogsHaveNames) {
    for (const char* const catalog : {static_cast<const char*>(nullptr), ""}) {
        options.catalogs = &catalog;
        options.catalog_count = 1;
        EXPECT_EQ(codeOf("{}", &options), MP_INVALID);
    }
    options.catalogs = nullptr;
    EXPECT_EQ(codeOf("{}", &options), MP_INVALID);
}

TEST_P(LibraryInputTest, OptionsHaveASize) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, SIZE_MAX}) {
        options.size = size;
        EXPECT_EQ(codeOf("{}", &options), MP_INVALID) << size;
    }
}

TEST_P(LibraryInputTest, WhatIsUnknownIsInvalid) {
    options.flags = 1U << 30;
    EXPECT_EQ(codeOf("{}", &options), MP_INVALID);
    options.flags = 0;
    options.language = 77;
    EXPECT_EQ(codeOf("{}", &options), MP_INVALID);
}

TEST_P(LibraryInputTest, OneThatIsCancelledBeforehandDoesNothing) {
    const std::int32_t cancel = 1;
    options.cancel = &cancel;
    EXPECT_EQ(codeOf(composite().c_str(), &options), MP_CANCELLED);
    EXPECT_FALSE(folder.exists("out.dita"));
}

INSTANTIATE_TEST_SUITE_P(Both, LibraryInputTest, testing::Values(mp_run, mp_spawn),
                         [](const testing::TestParamInfo<LibraryFunction>& info) {
                             return info.param == mp_run ? "Run" : "Spawn";
                         });

TEST(NoResultTest, HasNothingAndIsNoFault) {
    mp_result_free(nullptr);
    EXPECT_EQ(mp_result_code(nullptr), MP_NO_MEMORY);
    EXPECT_STREQ(mp_result_error(nullptr), mp_code_text(MP_NO_MEMORY));
    EXPECT_EQ(mp_result_status(nullptr), MP_NO_STATUS);
    EXPECT_EQ(mp_result_signal(nullptr), 0);
    EXPECT_EQ(mp_result_value_count(nullptr), 0U);
    EXPECT_EQ(mp_result_value(nullptr, 0), nullptr);
    EXPECT_EQ(mp_result_finding_count(nullptr), 0U);
    EXPECT_EQ(mp_result_finding(nullptr, 0), nullptr);
    EXPECT_EQ(mp_result_dependency_count(nullptr), 0U);
    EXPECT_EQ(mp_result_dependency(nullptr, 0), nullptr);
    EXPECT_EQ(mp_result_key_count(nullptr), 0U);
    EXPECT_EQ(mp_result_key(nullptr, 0), nullptr);
    EXPECT_EQ(mp_result_output_count(nullptr), 0U);
    EXPECT_EQ(mp_result_output(nullptr, 0), nullptr);
}

TEST(CodeTest, EachHasATextOfItsOwn) {
    const std::string unknown = mp_code_text(-1);
    std::vector<std::string> texts{unknown};
    for (int code = MP_OK; code <= MP_INTERNAL; ++code) {
        const std::string text = mp_code_text(code);
        EXPECT_EQ(std::count(texts.begin(), texts.end(), text), 0) << text;
        texts.push_back(text);
    }
    EXPECT_EQ(mp_code_text(MP_INTERNAL + 1), unknown);
}

}  // namespace
}  // namespace marrowpress
