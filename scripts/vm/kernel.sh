# shellcheck shell=bash
# Debian's kernel for a virtual machine, fetched as a package and never installed.

# The parts of the package that are kept: the kernel and the modules that the checks need.
readonly kernel_parts=(
    './boot/vmlinuz-*'
    './lib/modules/*/modules.*'
    './lib/modules/*/kernel/drivers/usb/*'
    './lib/modules/*/kernel/drivers/virtio/*'
    './lib/modules/*/kernel/fs/9p/*'
    './lib/modules/*/kernel/fs/configfs/*'
    './lib/modules/*/kernel/fs/fscache/*'
    './lib/modules/*/kernel/fs/netfs/*'
    './lib/modules/*/kernel/fs/overlayfs/*'
    './lib/modules/*/kernel/net/9p/*')

kernel_package() {
    apt-cache depends linux-image-amd64 2>/dev/null | sed -n 's/ *Depends: \(linux-image-.*\)/\1/p'
}

# Downloads the package into a directory: download_kernel DIRECTORY
download_kernel() {
    local directory=$1 package
    package=$(kernel_package)
    [ -n "$package" ] || return 1
    echo "Fetching $package"
    rm -rf "$directory"
    mkdir -p "$directory"
    (cd "$directory" && apt-get download "$package" >/dev/null 2>&1)
}

# Fetches the kernel unless it is there: fetch_kernel DIRECTORY
fetch_kernel() {
    local directory=$1
    [ -f "$directory/kernel/complete" ] && return
    if ! download_kernel "$directory/fetched"; then
        # The lists of packages are missing or too old.
        [ "$(id -u)" -eq 0 ] || return 1
        apt-get update >/dev/null 2>&1 || true
        download_kernel "$directory/fetched" || return 1
    fi
    rm -rf "$directory/kernel"
    unpack_kernel "$(echo "$directory"/fetched/*.deb)" "$directory/kernel" || return 1
    rm -r "$directory/fetched"
}

unpack_kernel() {
    local package=$1 kernel=$2
    mkdir -p "$kernel"
    dpkg-deb --fsys-tarfile "$package" | tar -x -C "$kernel" --wildcards "${kernel_parts[@]}"
    depmod -b "$kernel" "$(kernel_version "$kernel")"
    touch "$kernel/complete"
}

kernel_version() {
    basename "$1"/lib/modules/*
}
