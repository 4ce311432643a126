# Writes the text that DS:SI points to, up to a zero, to the first serial port. Then it stops the PC by the device
# isa-debug-exit of QEMU, which ends with the status 2 * 16 + 1.

serial_data = 0x3F8
serial_status = 0x3FD
serial_is_ready = 0x20
exit_port = 0xF4

say_and_stop:
    cld
next_character:
    lodsb
    test %al, %al
    jz stop
    mov %al, %bl
    mov $serial_status, %dx
until_ready:
    in %dx, %al
    test $serial_is_ready, %al
    jz until_ready
    mov $serial_data, %dx
    mov %bl, %al
    out %al, %dx
    jmp next_character
stop:
    mov $16, %al
    out %al, $exit_port
