# Doxygen's input filter for include/qziso32.h: the header's own comments
# become the reference's text without changing the header.
#  - a comment after code on its line documents that field, message or style;
#  - a plain comment block right before a type, a macro or a field documents
#    it (before an export, the export's own "/** */" block follows instead).
function flush(next_line,    i, doc) {
  doc = n > 0 && next_line !~ /^[[:space:]]*(QZAPI|\/\*|$|#if|#endif|#else|#undef)/
  for (i = 1; i <= n; i++) {
    if (doc && held[i] ~ /^[[:space:]]*\/\*[^*]/) sub(/\/\*/, "/**", held[i])
    print held[i]
  }
  n = 0
}
/^[[:space:]]*\/\*[^*]/ && !/^\/\* -+ \*\/$/ && !inblock {
  inblock = 1
}
inblock {
  held[++n] = $0
  if ($0 ~ /\*\//) inblock = 0
  next
}
{
  flush($0)
  line = $0
  if (line ~ /^[[:space:]]*[^[:space:]\/*][^\/]*\/\* /)
    sub(/\/\* /, "/**< ", line)
  print line
}
END { flush("") }
