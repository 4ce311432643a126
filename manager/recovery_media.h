// What recovery media look like: the kinds of media and the files that mark them.
#pragma once

// The kind of media that a volume is tested for; any other value tests neither drive type nor flags.
enum : int { TYPE_HDD = 1, TYPE_DISC = 2, TYPE_UFD = 3 };
