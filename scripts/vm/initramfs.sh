# shellcheck shell=bash
# The first files of a virtual machine: enough to find this machine's file system.

# The files of modules and of what they need, in the order of loading: module_files KERNEL MODULE…
module_files() {
    local kernel=$1 module
    shift
    for module in "$@"; do
        modprobe -d "$kernel" -S "$(kernel_version "$kernel")" --show-depends "$module"
    done | sed -n 's/^insmod \([^ ]*\).*/\1/p' | awk '!seen[$0]++'
}

# What the checks inside are told, as shell variables.
machine_settings() {
    printf '%s=%q\n' tree "$tree" program "$program" filter "$filter" repeat "$repeat" \
        kernel "$tree/$vm/kernel"
}

# Packs DIRECTORY/initramfs: make_initramfs DIRECTORY
make_initramfs() {
    local directory=$1 root number=10 module
    root=$(mktemp -d)
    mkdir -p "$root"/{bin,dev,proc,sys,modules,host,changes,root}
    cp "$(command -v busybox)" "$root/bin/busybox"
    cp tests/vm/init "$root/init"
    machine_settings >"$root/settings"
    while read -r module; do
        cp "$module" "$root/modules/$number-$(basename "$module")"
        number=$((number + 1))
    done < <(module_files "$directory/kernel" virtio_pci 9pnet_virtio 9p overlay)
    (cd "$root" && find . | busybox cpio -o -H newc 2>/dev/null) >"$directory/initramfs"
    rm -r "$root"
}
