// What the first line of a recording is known by.
#pragma once

inline constexpr const char* recordingKey = "kestovaRecording";
inline constexpr int recordingVersion = 1;
