#pragma once

#include <string>
#include <string_view>

#include "session/Session.h"

/// An installation that belongs to the system cannot be written by its users. What they work on,
/// the sample database and the method workbooks, then comes to them as copies below their folder.
namespace lodex {

/// Whether this user may write the file, or into the folder. Something missing cannot be written.
bool canWrite(std::string_view path);

/// Copies a file, or a folder with all that is in it, to `target`. What is there already stays
/// as it is, so that nothing of the user's is lost and a newer installation adds what is new. True
/// when all of it is there in the end.
bool copyMissing(std::string_view source, std::string_view target);

/// Replaces paths of the record into a read-only installation by their copies: SampleDbPath by
/// <user>\data\<name>, CGroupsFolder by <user>\C-Groups. A path stays when it is not below GeoPath,
/// when it can be written or when no copy can be made. A missing user ini starts as a copy of
/// <geo>\ini\UserSettings.ini.
void useUserCopies(SessionRecord& record);

}  // namespace lodex
