# The boot code of a master boot record: starts the primary partition whose entry is active, as the convention has it.
# The firmware loads it to 0x7C00 with the number of the disk in DL. It ends before the signature of the disk, at 440.

table = 0x600 + 446
active = 0x80

.code16
.globl _start
_start:
    xor %ax, %ax
    mov %ax, %ss
    mov $0x7C00, %sp
    mov %ax, %ds
    mov %ax, %es

    # Out of the way of the sector that is loaded: what follows is linked to run at 0x600.
    cld
    mov $0x7C00, %si
    mov $0x600, %di
    mov $256, %cx
    rep movsw
    ljmp $0, $choose

# BP points to the active entry, 0 as long as there is none.
choose:
    xor %bp, %bp
    mov $table, %si
    mov $4, %cx
each_entry:
    mov (%si), %al
    test %al, %al
    jz next_entry
    cmp $active, %al
    jne invalid
    test %bp, %bp
    jnz invalid
    mov %si, %bp
next_entry:
    add $16, %si
    loop each_entry

    test %bp, %bp
    jz none
    mov 8(%bp), %eax
    mov %eax, first_sector
    mov $packet, %si
    mov $0x42, %ah
    int $0x13
    jc unreadable
    cmpw $0xAA55, 0x7C00 + 510
    jne not_startable
    mov %bp, %si
    ljmp $0, $0x7C00

invalid:
    mov $invalid_words, %si
    jmp say_and_stop
none:
    mov $none_words, %si
    jmp say_and_stop
unreadable:
    mov $unreadable_words, %si
    jmp say_and_stop
not_startable:
    mov $not_startable_words, %si
    jmp say_and_stop

# What INT 13h, function 42h, reads: one sector to 0000:7C00.
packet:
    .byte 16, 0
    .word 1
    .word 0x7C00, 0
first_sector:
    .quad 0

invalid_words: .asciz "invalid partition table\n"
none_words: .asciz "no active partition\n"
unreadable_words: .asciz "the active partition cannot be read\n"
not_startable_words: .asciz "the active partition has no boot sector\n"

.include "say_and_stop.s"
.org 440
