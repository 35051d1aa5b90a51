# Sourced by the build scripts: compiles through ccache where it is installed, so that a
# second build, in this tree or a fresh clone of it on the same machine, recompiles only what
# changed. Paths are taken relative to the tree, which lets clones share the cache.
if command -v ccache >/dev/null 2>&1; then
  export CMAKE_CXX_COMPILER_LAUNCHER="${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}"
  export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$(pwd)}"
  export CCACHE_NOHASHDIR="${CCACHE_NOHASHDIR:-true}"
  export CCACHE_MAXSIZE="${CCACHE_MAXSIZE:-5G}"
fi
