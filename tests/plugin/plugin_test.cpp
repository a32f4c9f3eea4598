#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

bool is_loaded(char const* path) {
    void* const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

/// This program does not link the constructs: they come and go with the plug-in.
TEST(Plugin, is_loaded_used_and_unloaded_as_often_as_one_likes) {
    ASSERT_FALSE(is_loaded(CALDER_CSP_LIBRARY)) << "nothing to see: it is there from the start";
    for (int round = 0; round < 3; ++round) {
        void* const module = dlopen(CALDER_PROBE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(module, nullptr) << dlerror();
        EXPECT_TRUE(is_loaded(CALDER_CSP_LIBRARY));
        auto const count = reinterpret_cast<unsigned (*)()>(dlsym(module, "count_transitions"));
        ASSERT_NE(count, nullptr) << dlerror();
        EXPECT_EQ(count(), 2U);
        EXPECT_EQ(dlclose(module), 0);
        EXPECT_FALSE(is_loaded(CALDER_CSP_LIBRARY)) << "something holds the library";
    }
}

TEST(Plugin, exports_its_classes) {
    void* const library = dlopen(CALDER_CSP_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_NE(dlsym(library, "_ZTVN6Calder15ProcessCompiler3CSP13PrefixProcessE"), nullptr);
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_FALSE(is_loaded(CALDER_CSP_LIBRARY));
}

} // namespace
