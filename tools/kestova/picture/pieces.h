// What a disk consists of, one piece behind the other.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/reports/status.h"

// A partition or free space.
struct Piece {
    int64_t offset = 0;                          // bytes
    int64_t size = 0;                            // bytes
    const PartitionReport* partition = nullptr;  // null: free
};

// In the order of the disk.
std::vector<Piece> PiecesOf(const DiskReport& disk);

// "partition 2: NTFS (0x07), 200.0 GiB, C:, Windows, active, installed Windows".
std::string PieceWords(const Piece& piece);

// Whether a partition's volume is in a condition that bars a change.
bool IsBarring(const PartitionReport& partition);
