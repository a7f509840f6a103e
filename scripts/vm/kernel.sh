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

# Fetches the kernel unless it is there: fetch_kernel DIRECTORY
fetch_kernel() {
    local directory=$1 package fetched
    [ -f "$directory/kernel/complete" ] && return
    package=$(kernel_package)
    if [ -z "$package" ] && [ "$(id -u)" -eq 0 ]; then
        apt-get update >/dev/null 2>&1 || true
        package=$(kernel_package)
    fi
    [ -n "$package" ] || return 1
    echo "Fetching $package"
    rm -rf "$directory/kernel" "$directory/fetched"
    mkdir -p "$directory/fetched"
    (cd "$directory/fetched" && apt-get download "$package" >/dev/null 2>&1) || return 1
    fetched=$(echo "$directory"/fetched/*.deb)
    unpack_kernel "$fetched" "$directory/kernel" || return 1
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
