#include "marrowpress/marrowpress.hpp"

#include <dlfcn.h>

#include "marrowpress/host_base.hpp"
#include "tests/library/library_fixture.h"

namespace marrowpress {
namespace {

class CppTest : public LibraryTest {
protected:
    mp::Publication publication() const {
        return {.map = folder.file("m.ditamap"), .output = folder.file("out.dita")};
    }
};

TEST_F(CppTest, PublishesWithWhatItTells) {
    const mp::Result result = mp::publish(publication(), {.flags = MP_KEYS | MP_DEPENDENCIES});
    EXPECT_TRUE(result.isPublished()) << result.error();
    EXPECT_EQ(result.outputs(), std::vector<std::string_view>{publication().output});
    EXPECT_EQ(result.findings().size(), 3U);
    EXPECT_EQ(result.keys().size(), 1U);
    EXPECT_FALSE(result.dependencies().empty());
    EXPECT_EQ(result.values().size(), 4U);
}

TEST_F(CppTest, ARequestIsJsonWhateverIsInIt) {
    mp::Publication odd = publication();
    odd.filter = "a\"b\\c\n.ditaval";
    const mp::Result result = mp::run(mp::requestFor(odd));
    EXPECT_EQ(result.status(), 0) << result.error();
    EXPECT_FALSE(result.findings().empty()) << "the filter is not there";
    odd.isFlatBook = true;
    odd.output = folder.path().string();
    EXPECT_TRUE(mp::spawn(mp::requestFor(odd)).isPublished());
    EXPECT_TRUE(folder.exists("t.qs"));
}

TEST_F(CppTest, WithoutAnAnswerItThrowsTheText) {
    try {
        mp::publish(publication(), {.flags = 1U << 31});
        FAIL();
    } catch (const mp::Error& error) {
        EXPECT_EQ(error.code(), MP_INVALID);
        EXPECT_STREQ(error.what(), "options.flags has bits that are unknown");
    }
    mp::Publication none = publication();
    none.map = folder.file("none.ditamap");
    const mp::Result failed = mp::publish(none);
    EXPECT_FALSE(failed.isPublished());
    EXPECT_NE(failed.error(), "");
}

TEST_F(CppTest, WhatACallbackThrowsEndsTheRunAndComesOut) {
    mp::Options options;
    options.onProgress = [](std::string_view) { throw std::length_error("enough"); };
    EXPECT_THROW(mp::publish(publication(), options), std::length_error);
    EXPECT_FALSE(folder.exists("out.dita"));
    EXPECT_THROW(mp::spawn(mp::requestFor(publication()), options), std::length_error);
}

TEST_F(CppTest, CallbacksGetTheFindingsAndTheEntities) {
    folder.write("m.ditamap", "<!DOCTYPE map PUBLIC \"own\" \"none.dtd\"><map/>");
    std::vector<std::string> asked;
    std::size_t findings = 0;
    mp::Options options;
    options.onFinding = [&](const mp_finding&) { ++findings; };
    options.resolveEntity = [&](std::string_view id) -> std::optional<std::string> {
        asked.emplace_back(id);
        return std::nullopt;
    };
    const mp::Result result = mp::publish(publication(), options);
    EXPECT_EQ(findings, result.findings().size());
    EXPECT_FALSE(asked.empty());
}

/// A host over the bare interfaces, with an observer.
class CountingHost final : public CatalogHost<IHostObserver> {
public:
    explicit CountingHost(std::size_t& counts) : counts_(counts) {}
    ~CountingHost() override { counts_ += 1000; }

    ComStatus observe(const Observation* met) override {
        counts_ += met->kind == ObservationKind::kOutputWritten ? 1 : 0;
        return kComOk;
    }

private:
    std::size_t& counts_;
};

class HostBaseTest : public CppTest {
protected:
    HostBaseTest() : module(dlopen(MARROWPRESS_CLIENT_MODULE, RTLD_NOW | RTLD_LOCAL)) {}

    ClientEntry entry() const {
        return module ? reinterpret_cast<ClientEntry>(dlsym(module, kClientEntryName)) : nullptr;
    }

    void* module;
};

TEST_F(HostBaseTest, PublishesAndGoesWithItsLastReference) {
    ASSERT_NE(entry(), nullptr);
    std::size_t counts = 0;
    {
        const auto host = makeCounted<CountingHost>(counts);
        EXPECT_EQ(host->publish(entry(), module, composite()), kPublished);
        EXPECT_EQ(host->publish(entry(), module, "{}"), kRequestRefused);
        EXPECT_EQ(counts, 1U);
    }
    EXPECT_EQ(counts, 1001U);
    EXPECT_TRUE(folder.exists("out.dita"));
}

TEST_F(HostBaseTest, GivesEachInterfaceAndNoOther) {
    std::size_t counts = 0;
    const auto host = makeCounted<CountingHost>(counts);
    IHostObject* const object = static_cast<IHostMain*>(host.get());
    EXPECT_TRUE(InterfaceRef<IHostMain>::query(object));
    EXPECT_TRUE(InterfaceRef<IHostClients>::query(object));
    EXPECT_TRUE(InterfaceRef<IHostObserver>::query(object));
    EXPECT_TRUE(InterfaceRef<IHostObject>::query(object));
    EXPECT_FALSE(InterfaceRef<IHostConsole>::query(object));
    EXPECT_EQ(object->queryInterface(IHostMain::kId, nullptr), kComFailed);
    EXPECT_EQ(counts, 0U);
}

TEST_F(HostBaseTest, AProcessMayHaveTheLibraryAndAHostOfItsOwn) {
    std::size_t counts = 0;
    const auto host = makeCounted<CountingHost>(counts);
    EXPECT_EQ(host->publish(entry(), module, composite()), kPublished);
    EXPECT_TRUE(mp::publish(publication()).isPublished());
    EXPECT_EQ(host->publish(entry(), module, composite()), kPublished);
}

using CatalogsTest = CppTest;

TEST_F(CatalogsTest, KnowWhatTheirFilesSay) {
    const std::string catalog =
        folder.write("c.xml", R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog">)"
                              R"(<public publicId="own" uri="own.dtd"/></catalog>)");
    const char* const name = catalog.c_str();
    mp_catalogs* catalogs = nullptr;
    ASSERT_EQ(mp_catalogs_open(&name, 1, &catalogs), MP_OK);
    char path[PATH_MAX] = "";
    EXPECT_EQ(mp_catalogs_find(catalogs, "other", path, sizeof(path)), 0);
    EXPECT_EQ(mp_catalogs_find(catalogs, "own", path, 4), 0) << "it does not fit";
    EXPECT_EQ(mp_catalogs_find(catalogs, "own", path, sizeof(path)), 1);
    EXPECT_EQ(path, folder.file("own.dtd"));
    mp_catalogs_free(catalogs);
}

TEST(BadCatalogsTest, BadInputIsACode) {
    mp_catalogs* catalogs = nullptr;
    const char* const bad = "\xFF";
    EXPECT_EQ(mp_catalogs_open(nullptr, 0, nullptr), MP_INVALID);
    EXPECT_EQ(mp_catalogs_open(nullptr, 1, &catalogs), MP_INVALID);
    EXPECT_EQ(mp_catalogs_open(&bad, 1, &catalogs), MP_INVALID);
    EXPECT_EQ(catalogs, nullptr);
    ASSERT_EQ(mp_catalogs_open(nullptr, 0, &catalogs), MP_OK);
    char path[8] = "x";
    EXPECT_EQ(mp_catalogs_find(nullptr, "id", path, sizeof(path)), 0);
    EXPECT_EQ(mp_catalogs_find(catalogs, nullptr, path, sizeof(path)), 0);
    EXPECT_EQ(mp_catalogs_find(catalogs, "id", nullptr, 0), 0);
    EXPECT_EQ(mp_catalogs_find(catalogs, "-//OASIS//DTD DITA Map//EN", path, sizeof(path)), 0);
    mp_catalogs_free(catalogs);
    mp_catalogs_free(nullptr);
}

}  // namespace
}  // namespace marrowpress
