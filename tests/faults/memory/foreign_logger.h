// A logging library of another make, in place of the default one: it keeps no record and needs no memory.
#pragma once

// What the library has handed to it since Restart.
struct ReceivedRecords {
    int count = 0;
    int nullTexts = 0;
    int withoutText = 0;      // ended before anything but the closing empty text was appended
    int ofCurrentModule = 0;  // written while the library's module was current
};

ReceivedRecords& Received();
