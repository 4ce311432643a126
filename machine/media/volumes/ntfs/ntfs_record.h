// Whether a record of the master file table is what a change of its file may rest on.
#pragma once

struct _ntfs_inode;

namespace machine {

// The attributes of the file's record follow each other inside it, and each holds its name and its value. The
// library checks less of that before it moves them.
bool IsSound(const _ntfs_inode& inode);

}  // namespace machine
