// Which module is current.
#pragma once

// Fails the running test when an operation has left the library's module current behind it.
void ExpectNoCurrentModule();
