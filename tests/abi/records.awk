# The layout of the records that hosts share with the library, whose names `ours` matches, out of what abidw writes:
#
#   tagADDRINFO  8 bytes
#       0 nCode
#       4 nNode
function value(name,    from) {
    if (!match($0, " " name "='[^']*'")) return ""
    from = RSTART + length(name) + 3
    return substr($0, from, RSTART + RLENGTH - 1 - from)
}
/<class-decl / {
    inside = value("name") ~ "^(" ours ")$" && value("size-in-bits") != ""
    if (inside) printf "%s  %d bytes\n", value("name"), value("size-in-bits") / 8
    next
}
/<\/class-decl>/ { inside = 0 }
inside && /<data-member / && value("layout-offset-in-bits") != "" { offset = value("layout-offset-in-bits") / 8; wanted = 1; next }
inside && wanted && /<var-decl / { printf "%6d %s\n", offset, value("name"); wanted = 0 }
