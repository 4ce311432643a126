# The boot code of an NTFS volume: says "NAME starts". The first sector of the volume is at 0x7C00; it begins with a jump over
# the volume's parameters to this code, at 0x54. The name is the symbol `words`, which follows this file.

.code16
.globl _start
_start:
    xor %ax, %ax
    mov %ax, %ds
    mov $words, %si

.include "say_and_stop.s"
