#pragma once

#include <QString>

// The folder every relative path of the program is taken from. installFolder holds the binary
// and the shipped files (branding/, cpuprofiles/, settings/). Where the user may write it (a
// copy unpacked by hand, the build's stage) it is the working folder itself. Installed
// system-wide it is read-only: the working folder is then userFolder, given settings/ and
// updates/ of its own and links to the shipped files, so the same relative paths hold there.
// Returns the folder to work in.
QString prepareWorkingFolder(const QString &installFolder, const QString &userFolder,
                             bool installFolderWritable);

// Whether this process may write into folder.
bool folderWritable(const QString &folder);

// ~/.local/share/varnel (or under $XDG_DATA_HOME).
QString userWorkingFolder();
