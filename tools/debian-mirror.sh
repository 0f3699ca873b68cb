# Sourced by what installs packages.

debian_mirror() {
  # The mirror that this machine is set up with, whichever of apt's two file formats it is written in.
  # A file that is not there is no error.
  {
    sed -n 's/^URIs: *//p' /etc/apt/sources.list.d/*.sources 2>/dev/null || true
    sed -n 's/^deb \(\[[^]]*\] \)\{0,1\}\([^ ]*\) bookworm .*/\2/p' /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null
    true
  } | tr ' ' '\n' | grep -E '/debian/?$' | head -n 1
}
