# Makes of a header's plain comments what doxygen reads as documentation. A comment "--- words ---" begins a group of
# members; of a class, what follows it up to an empty line is said of the group. A header that begins with a comment
# begins with what is said of the whole.
FNR == 1 { in_c = in_group = heading = 0 }
FNR <= 2 && /^\/\* [A-Z]/ { sub(/^\/\* /, "/** @file\n * "); in_c = 1 }
/^ *\/[\/*] --- .* ---( \*\/)?$/ {
    gsub(/^ *\/[\/*] --- | ---( \*\/)?$/, "")
    print (in_group ? "/// @}\n" : "") "/// @name " $0
    in_group = heading = 1
    next
}
(/^  private:|^};/ && !in_c || /^#(if|endif|ifdef)/) && in_group { print "/// @}"; in_group = 0 }
heading && /^$/ { print "/// @{"; heading = 0 }
{
    if (!sub(/^ *\/\/$/, "///") && !sub(/^ *\/\/ /, "/// ") && match($0, /[;,] +\/\/ /))
        $0 = substr($0, 1, RSTART + RLENGTH - 4) "///< " substr($0, RSTART + RLENGTH)
    if (!/clang-format/ && !sub(/^ *\/\* /, "/** ")) sub(/ \/\* /, " /**< ")
    print
}
