// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/file_rights.h"

#include <cstring>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace polyfab {
namespace {

constexpr const char* accessList = "system.posix_acl_access";

/// Others are the system's, and tell of the bytes or of a program's rights.
bool isKept(std::string_view name) {
    return name.starts_with("user.") || name == "security.selinux";
}

void copyAttribute(int to, int from, const char* name) {
    const ssize_t size = ::fgetxattr(from, name, nullptr, 0);
    if (size < 0) return;
    std::vector<char> value(static_cast<std::size_t>(size));
    const ssize_t got = ::fgetxattr(from, name, value.data(), value.size());
    if (got >= 0) ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(got), 0);
}

void copyAttributes(int to, int from) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    std::string names(static_cast<std::size_t>(size < 0 ? 0 : size), '\0');
    const ssize_t got = ::flistxattr(from, names.data(), names.size());
    names.resize(static_cast<std::size_t>(got < 0 ? 0 : got));
    for (const char* name = names.data(); name < names.data() + names.size();
         name += std::strlen(name) + 1) {
        if (isKept(name)) copyAttribute(to, from, name);
    }
}

} // namespace

bool copyRights(int to, int from, const struct stat& old) {
    const bool owner = ::fchown(to, old.st_uid, old.st_gid) == 0;
    const bool group = owner || ::fchown(to, static_cast<uid_t>(-1), old.st_gid) == 0;
    mode_t mode = old.st_mode & (owner ? 07777U : 0777U);
    if (!group) mode = (mode & 0707U) | (mode & 07U) << 3;
    // The folder may have given the new file an access list that the old one does not have.
    ::fremovexattr(to, accessList);
    if (from >= 0) copyAttributes(to, from);
    if (::fchmod(to, mode) != 0) return false;
    // Its entry for the group is about the group of the old file.
    if (from >= 0 && group) copyAttribute(to, from, accessList);
    return true;
}

} // namespace polyfab
