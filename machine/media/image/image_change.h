// A change of an image that is written as a whole: in a known order, with a way back from every point of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "machine/media/device/block_device.h"

namespace machine {

// Neighbouring sectors that change. `mark` is what they hold while the rest of the change is written; empty
// if they are part of that rest. A file system is marked as being changed that way.
struct ChangedRun {
    uint64_t offset = 0;  // bytes
    std::string before = {};
    std::string after = {};  // as long
    std::string mark = {};   // as long, or empty
};

// In the order of their offsets.
using ImageChange = std::vector<ChangedRun>;

// Appends sectors that begin at or behind the end of the change.
void AppendRun(ImageChange& change, ChangedRun run);

// Writes the marks, flushes, writes what else changes, flushes, writes what the marked sectors hold
// afterwards, flushes. False, with errno set, at the first failure.
bool WriteChange(BlockDevice& device, const ImageChange& change);

// The same back to what was before, from any point at which WriteChange, or this function, was cut off.
bool TakeBackChange(BlockDevice& device, const ImageChange& change);

// Reads all of the bytes at an offset, or returns false.
using ReadBytes = std::function<bool(uint64_t offset, void* buffer, size_t length)>;

// What is there of a change. Foreign: bytes that the change does not know, or that cannot be read.
enum class ChangeState { Before, Between, After, Foreign };
ChangeState StateOfChange(const ReadBytes& read, const ImageChange& change);

}  // namespace machine
