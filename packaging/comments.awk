# Makes of a header's plain comments what doxygen reads as documentation. A line "// --- words ---" begins a group of
# members, and what follows it up to an empty line is said of the group.
/^ *\/\/ --- .* ---$/ {
    gsub(/^ *\/\/ --- | ---$/, "")
    print (in_group ? "/// @}\n" : "") "/// @name " $0
    in_group = heading = 1
    next
}
/^  private:|^};/ && in_group { print "/// @}"; in_group = 0 }
heading && /^$/ { print "/// @{"; heading = 0 }
{
    if (!sub(/^ *\/\/$/, "///") && !sub(/^ *\/\/ /, "/// ") && match($0, /[;,] +\/\/ /))
        $0 = substr($0, 1, RSTART + RLENGTH - 4) "///< " substr($0, RSTART + RLENGTH)
    print
}
