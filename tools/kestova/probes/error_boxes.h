// The boxes that Windows shows for a drive without a medium.
#pragma once

// From now on the program has none: a call that would show one fails at once.
void ShowNoErrorBoxes();
