#include "PhysicalSupport.hpp"
#include "SystemCalls.hpp"
#include "support/Cases.hpp"
#include "support/RawZip.hpp"
#include "support/Texts.hpp"

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <iostream>
#include <map>

namespace {

namespace fs = std::filesystem;

using namespace opc::test;

const char* const ACCESS = "system.posix_acl_access";
const char* const DEFAULT = "system.posix_acl_default";
const char* const HASH = "security.ima";
const char* const NOTE = "user.note";

constexpr uid_t ROOT = 0;
constexpr uid_t ALICE = 65531;
constexpr uid_t BOB = 65532;
constexpr gid_t STAFF = 65533;
const std::map<std::string, uid_t> IDS = {{"root", ROOT}, {"alice", ALICE}, {"bob", BOB}, {"staff", STAFF}};

std::string attribute(const fs::path& path, const char* name) {
    std::string value(1000, '\0');
    const ssize_t size = ::getxattr(path.c_str(), name, value.data(), value.size());
    value.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return value;
}

bool set(const fs::path& path, const char* name, const std::string& value) {
    return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

/// An access control list in the format of the system: the permissions of the owner, of Alice, of the group, of the
/// mask and of all others.
std::string accessList(const std::string& permissions) {
    const unsigned char tags[] = {0x01, 0x02, 0x04, 0x10, 0x20};
    std::string list{'\2', '\0', '\0', '\0'};
    for (std::size_t i = 0; i < std::size(tags); ++i) {
        const uid_t id = i == 1 ? ALICE : 0xFFFFFFFF;
        list += static_cast<char>(tags[i]);
        list += '\0';
        list += static_cast<char>(permissions[i] - '0');
        list += '\0';
        for (unsigned shift = 0; shift < 32; shift += 8)
            list += static_cast<char>(id >> shift & 0xFFU);
    }
    return list;
}

struct Attributes {
    uid_t owner = ROOT;
    gid_t group = ROOT;
    mode_t mode = 0; ///< with a list, the group bits are the mask
    std::string list;

    /// @param text  such as "alice staff 0640 64040"
    static Attributes read(const std::string& text) {
        const auto parts = words(text);
        return {IDS.at(parts.at(0)), IDS.at(parts.at(1)),
                static_cast<mode_t>(std::stoul(parts.at(2), nullptr, 8)),
                parts.size() > 3 ? accessList(parts[3]) : ""};
    }
    static Attributes of(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return {status.st_uid, status.st_gid, status.st_mode & 07777U, attribute(path, ACCESS)};
    }
};

class ZipAttributes : public FileTest {
protected:
    ~ZipAttributes() override { SystemCalls::before = nullptr; }

    void save() const {
        ZipPackage package(path);
        package.open(OpenMode::ReadWrite);
        create(package, u"/b", "beta");
        package.close(false);
    }

    /// @return whether `action` threw nothing in a process of that user, who is also a member of `STAFF`
    static bool asUser(uid_t user, const std::function<void()>& action) {
        const pid_t child = ::fork();
        if (child == 0) {
            try {
                if (user != ::geteuid() &&
                    (::setgroups(1, &STAFF) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0))
                    ::_exit(2);
                action();
                ::_exit(0);
            } catch (const std::exception& e) {
                std::cerr << e.what() << '\n';
                ::_exit(1);
            }
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    void makeFile(const Attributes& attributes) const {
        fs::remove(path);
        writeFile(path, makeZip({stored("a", "alpha")}));
        ::removexattr(path.c_str(), ACCESS); // the list that the folder has given it
        if (isRoot) {
            ASSERT_EQ(::chown(path.c_str(), attributes.owner, attributes.group), 0);
        }
        if (!attributes.list.empty()) {
            ASSERT_TRUE(set(path, ACCESS, attributes.list));
        }
        ASSERT_EQ(::chmod(path.c_str(), attributes.mode), 0);
    }

    /// Whether the file system has access control lists; otherwise none can be lost.
    bool knowsLists() const {
        writeFile(folder / "probe", std::string());
        const std::string list = accessList("64040");
        const bool knows = ::setxattr((folder / "probe").c_str(), ACCESS, list.data(), list.size(), 0) == 0;
        fs::remove(folder / "probe");
        if (!knows)
            std::cerr << "No access control lists in " << folder.path() << ": tested without them\n";
        return knows;
    }

    const bool isRoot = ::geteuid() == ROOT;
};

TEST_F(ZipAttributes, surviveASaveOrNarrow) {
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const bool lists = knowsLists();
    const auto check = [&](const std::string& saver, const std::string& before, const std::string& after) {
        const Attributes old = Attributes::read(before);
        const Attributes kept = Attributes::read(after);
        if ((!isRoot && (saver != "root" || old.owner != ROOT)) || (!lists && !old.list.empty()))
            return;
        makeFile(old);
        ASSERT_EQ(attribute(path, ACCESS), old.list);
        EXPECT_TRUE(asUser(isRoot ? IDS.at(saver) : ::geteuid(), [this] { save(); }));
        const Attributes now = Attributes::of(path);
        EXPECT_EQ(now.owner, isRoot ? kept.owner : ::geteuid());
        EXPECT_EQ(now.group, isRoot ? kept.group : ::getegid());
        EXPECT_EQ(now.mode, kept.mode) << std::oct << now.mode;
        EXPECT_EQ(now.list, kept.list);
        EXPECT_EQ(readZip(readFile(path)).size(), 2U);
    };
    forEachCase("zip/attributes.txt", check);
}

TEST_F(ZipAttributes, areNeverWiderThanThoseOfTheOldFile) {
    const bool lists = knowsLists();
    if (lists) {
        ASSERT_TRUE(set(folder.path(), DEFAULT, accessList("77777")));
    }
    const Attributes olds[] = {{ROOT, ROOT, 0644, ""},
                               {isRoot ? ALICE : ROOT, isRoot ? BOB : ROOT, isRoot ? 0440U : 0600U, ""},
                               {ROOT, ROOT, 0660, lists ? accessList("66060") : ""}};
    for (const Attributes& wanted : olds) {
        for (const std::string refused : {"", "fsetxattr", "fchown", "fchmod"}) {
            makeFile(wanted);
            const Attributes old = Attributes::of(path);
            const auto check = [&](const Attributes& now, const std::string& when) {
                const bool isOwners = now.owner == old.owner;
                const bool isSame = isOwners && now.group == old.group && now.list == old.list;
                const mode_t own = refused == "fchmod" ? 0600U : 0U; // its owner may do everything
                const mode_t allowed = own | (isSame ? old.mode : isOwners ? old.mode & 0700U : 0600U);
                EXPECT_EQ(now.mode & ~allowed, 0U) << std::oct << now.mode << " for " << old.mode << " at "
                                                   << when << ", refused: " << refused;
            };
            const fs::path temporary = folder / ".a.zip.opcmodel-new";
            SystemCalls::before = [&](const std::string& call, int) {
                if (call != "flock" && fs::exists(temporary))
                    check(Attributes::of(temporary), call);
                return call == refused ? EPERM : 0;
            };
            save();
            SystemCalls::before = nullptr;
            check(Attributes::of(path), "the end");
        }
    }
}

TEST_F(ZipAttributes, includeExtendedOnes) {
    makeFile({ROOT, ROOT, 0644, ""});
    if (!set(path, NOTE, "note")) {
        std::cerr << "No extended attributes in " << folder.path() << '\n';
        return;
    }
    EXPECT_EQ(set(path, "trusted.note", "note"), isRoot);
    set(path, HASH, "hash"); // not every system lets everybody set it
    save();
    EXPECT_EQ(attribute(path, NOTE), "note");
    EXPECT_EQ(attribute(path, "trusted.note"), isRoot ? "note" : "");
    EXPECT_EQ(attribute(path, HASH), "") << "of the old content";
    SystemCalls::before = [](const std::string& call, int) { return call == "fsetxattr" ? ENOSPC : 0; };
    EXPECT_FAILS(ENOSPC, "a.zip: can't keep the extended attributes", save());
    EXPECT_EQ(attribute(path, NOTE), "note");
    SystemCalls::before = [](const std::string& call, int) { return call == "fsetxattr" ? ENOTSUP : 0; };
    save();
    EXPECT_EQ(attribute(path, NOTE), "");
}

TEST_F(ZipAttributes, ofAFolderThatIsEverybodysStopNoSave) {
    const fs::path temporary = folder / ".a.zip.opcmodel-new";
    makeFile({BOB, BOB, 0644, ""});
    const std::function<void()> strangers[] = {
        [&] { fs::create_directories(temporary / "full"); },
        [&] { writeFile(temporary, std::string("x")); },
        [&] { fs::create_symlink("/", temporary); },
        [&] {
            writeFile(temporary, std::string("x"));
            for (int i = 0; i < 100; ++i)
                writeFile(temporary.string() + "-" + std::to_string(i), std::string("x"));
        },
    };
    for (const auto& make : strangers) {
        ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
        ASSERT_TRUE(asUser(isRoot ? ALICE : ::geteuid(), make));
        const int locked = isRoot ? ::open(temporary.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC) : -1;
        if (locked >= 0) {
            ASSERT_EQ(::flock(locked, LOCK_EX), 0);
        }
        const std::size_t before = folder.count();
        EXPECT_TRUE(asUser(isRoot ? BOB : ::geteuid(), [this] { save(); }));
        ::close(locked);
        EXPECT_LE(folder.count(), before);
        for (const auto& entry : fs::directory_iterator(folder.path()))
            if (entry.path() != path)
                fs::remove_all(entry.path());
    }
}

} // namespace
