// The kinds of recovery media.
#pragma once

// The kind that a volume is tested for; with any other value neither the drive type nor the flags are tested.
enum : int { TYPE_HDD = 1, TYPE_DISC = 2, TYPE_UFD = 3 };
