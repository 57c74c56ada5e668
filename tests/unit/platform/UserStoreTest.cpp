// The per-user store: where it lives, how values lie on disk, and that writers never leave a
// half-written value.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "platform/UserStore.h"
#include "support/TempStore.h"

using platform::UserStore;

TEST(UserStore, FolderIsTheOverrideThenXdgThenHome) {
    const struct {
        const char *override, *xdg, *want;
    } cases[] = {
        {"/tmp/override", "/tmp/xdg", "/tmp/override"},
        {nullptr, "/tmp/xdg", "/tmp/xdg/Tyx-fonica/TyxVireo"},
        {"", nullptr, "/home/tester/.config/Tyx-fonica/TyxVireo"},
        {nullptr, "relative/ignored", "/home/tester/.config/Tyx-fonica/TyxVireo"},
    };
    for (const auto& c : cases) {
        ScopedEnv a("TYX_VIREO_CONFIG_DIR", c.override), b("XDG_CONFIG_HOME", c.xdg), h("HOME", "/home/tester");
        EXPECT_EQ(UserStore::currentUserFolder(), c.want);
    }
}

TEST(UserStore, OneFilePerValueFourByteLittleEndianNumbersAndOnlyPlainNames) {
    ScopedStoreFolder scratch;
    const UserStore store(scratch.scratch() + "/a/b/TyxVireo/");
    EXPECT_FALSE(store.readDword("latencycomp"));
    EXPECT_FALSE(std::filesystem::exists(store.folder()));  // reading or constructing creates nothing
    ASSERT_TRUE(store.writeDword("latencycomp", 0x01020304u));
    EXPECT_EQ(fileBytes(store.folder() + "/latencycomp"), (std::vector<uint8_t>{4, 3, 2, 1}));
    EXPECT_EQ(store.readDword("latencycomp"), 0x01020304u);
    struct stat info;
    ASSERT_EQ(stat(store.folder().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    const std::vector<uint8_t> blob = {0, 1, 2, 0, 255};
    ASSERT_TRUE(store.writeBinary("DefaultPreset", blob.data(), blob.size()));
    EXPECT_EQ(store.readBinary("DefaultPreset"), blob);
    EXPECT_FALSE(store.readBinary("DefaultPreset", 4));  // longer than the reader accepts
    EXPECT_FALSE(store.readDword("DefaultPreset"));     // not a 4-byte value
    ASSERT_TRUE(store.writeString("CurrDir", "/home/ü/"));
    EXPECT_EQ(fileBytes(store.folder() + "/CurrDir").size(), 9u);  // UTF-8, no terminator
    EXPECT_EQ(store.readString("CurrDir"), "/home/ü/");
    writeBytes(store.folder() + "/ManualPath", {'/', 'm', 0, 'j'});
    EXPECT_EQ(store.readString("ManualPath", 10), "/m");  // a stored terminator is tolerated
    EXPECT_TRUE(store.remove("CurrDir"));
    EXPECT_TRUE(store.remove("CurrDir"));  // gone already: fine
    EXPECT_FALSE(store.contains("CurrDir"));

    for (const char* bad : {"", ".", "..", "../escape", "a/b", ".hidden"}) {
        EXPECT_FALSE(store.writeDword(bad, 1)) << bad;
        EXPECT_FALSE(store.readDword(bad)) << bad;
        EXPECT_FALSE(store.remove(bad)) << bad;
    }
    EXPECT_FALSE(store.writeDword(std::string_view("nul\0name", 8), 1));
    EXPECT_FALSE(std::filesystem::exists(scratch.scratch() + "/a/b/escape"));
    const UserStore nowhere{std::string()};
    EXPECT_FALSE(nowhere.writeDword("KeyboardFocus", 1));
    EXPECT_FALSE(nowhere.readDword("KeyboardFocus"));
}

TEST(UserStore, WritersAtTheSameTimeNeverLeaveAHalfWrittenValue) {
    ScopedStoreFolder scratch;
    // Three store objects on one folder writing bank-sized values over each other while a fourth reads.
    const std::vector<uint8_t> first(60689, 0x11), second(60689 * 2, 0x22);
    std::atomic<bool> stop{false};
    std::atomic<int> reads{0}, torn{0}, failedWrites{0};
    auto writer = [&](const std::vector<uint8_t>& value) {
        const UserStore store(scratch.store());
        for (int i = 0; i < 150; ++i) failedWrites += !store.writeBinary("DefaultBank", value.data(), value.size());
    };
    ASSERT_TRUE(UserStore(scratch.store()).writeBinary("DefaultBank", first.data(), first.size()));
    std::thread reader([&] {
        for (const UserStore store(scratch.store()); !stop; ++reads) {
            const auto got = store.readBinary("DefaultBank");
            torn += !got || (*got != first && *got != second);
        }
    });
    std::thread a(writer, std::cref(first)), b(writer, std::cref(second)), c(writer, std::cref(first));
    a.join(), b.join(), c.join();
    stop = true;
    reader.join();
    EXPECT_EQ(failedWrites, 0);
    EXPECT_EQ(torn, 0) << "of " << reads << " reads";
    EXPECT_GT(reads, 0);
    EXPECT_EQ(folderEntries(scratch.store()), std::vector<std::string>{"DefaultBank"});  // every temporary renamed or removed
}
