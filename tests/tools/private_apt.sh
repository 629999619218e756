# For scripts to source that fetch Debian's packages for tests. apt works on state, caches and
# sources of its own within the current directory, so neither root is needed nor is the machine
# changed. The script has a function `skip`, which ends it. DEBIAN_MIRROR may name another mirror
# than deb.debian.org.
# shellcheck shell=sh

# prepare_apt ARCHITECTURE...: the first is that of packages whose names say nothing of one.
prepare_apt() {
  keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  for command in apt-get dpkg-deb; do
    command -v $command >/dev/null || skip "there is no $command"
  done
  [ -e $keyring ] || skip "there is no $keyring to check Debian's packages with"
  rm -rf apt
  mkdir -p apt/lists/partial apt/archives/partial apt/etc/apt.conf.d apt/etc/preferences.d
  : >apt/status
  echo "deb [signed-by=$keyring] ${DEBIAN_MIRROR:-http://deb.debian.org/debian} bookworm main" \
    >apt/etc/sources.list
  cat >apt/apt.conf <<END_OF_CONFIGURATION
APT::Architecture "$1";
APT::Architectures { $(printf '"%s"; ' "$@")};
APT::Install-Recommends "false";
APT::Sandbox::User "$(id -un)";
Acquire::Languages "none";
Acquire::http::Timeout "20";
Dir::State "$PWD/apt";
Dir::State::status "$PWD/apt/status";
Dir::Cache "$PWD/apt";
Dir::Etc "$PWD/apt/etc";
END_OF_CONFIGURATION
  export APT_CONFIG="$PWD/apt/apt.conf"
  apt-get update -q >log 2>&1 || skip "apt-get update: $(tail -n 1 log)"
}

# unpack_packages DIRECTORY: what apt has downloaded. None of the packages' scripts runs.
unpack_packages() {
  mkdir -p "$1"
  for package in apt/archives/*.deb; do dpkg-deb -x "$package" "$1"; done
  rm -rf apt
}
