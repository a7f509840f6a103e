# Boots a virtual machine and waits for its end.

readonly up_limit_kvm=10
readonly limit=${ORVEX_VM_LIMIT:-180}
machine=

end_machine() {
    [ -z "$machine" ] || kill -KILL "$machine" 2>/dev/null || true
}
trap end_machine EXIT

# Whether acceleration is worth a try: there are machines with /dev/kvm on which nothing boots.
kvm_is_likely() {
    [ -r /dev/kvm ] && [ -w /dev/kvm ] && grep -qwE 'vmx|svm' /proc/cpuinfo
}

# start_machine DIRECTORY ACCELERATION: the console goes to console.log, the checks to results.
start_machine() {
    local directory=$1 accel=$2 cpu=max
    [ "$accel" = kvm ] && cpu=host
    rm -f "$directory/results" "$directory/console.log"
    qemu-system-x86_64 -accel "$accel" -cpu "$cpu" -smp 1 -m 256 -nodefaults -nic none \
        -display none -no-reboot -no-user-config \
        -kernel "$directory"/kernel/boot/vmlinuz-* -initrd "$directory/initramfs" \
        -append "console=ttyS0 quiet panic=-1 random.trust_cpu=on mitigations=off" \
        -virtfs local,path=/,mount_tag=host,security_model=none,readonly=on,multidevs=remap \
        -serial "file:$directory/console.log" -serial "file:$directory/results" \
        >"$directory/qemu.log" 2>&1 &
    machine=$!
}

# Waits until the machine has begun to speak, ended, or the seconds are over.
await_machine() {
    local results=$1 end=$((SECONDS + $2))
    while [ ! -s "$results" ] && kill -0 "$machine" 2>/dev/null && [ $SECONDS -lt "$end" ]; do
        sleep 0.1
    done
    [ -s "$results" ]
}

# boot_machine DIRECTORY: with acceleration when that works.
boot_machine() {
    local directory=$1 accel=${ORVEX_VM_ACCEL:-} end
    if [ "$accel" = kvm ] || { [ -z "$accel" ] && kvm_is_likely; }; then
        start_machine "$directory" kvm
        if await_machine "$directory/results" "$up_limit_kvm"; then
            accel=kvm
        else
            end_machine
            wait "$machine" 2>/dev/null || true
            accel=
        fi
    fi
    if [ "$accel" != kvm ]; then
        accel=tcg
        start_machine "$directory" tcg
    fi
    echo "Booted Linux $(kernel_version "$directory/kernel") with $accel"
    end=$((SECONDS + limit))
    while kill -0 "$machine" 2>/dev/null; do
        if [ $SECONDS -ge "$end" ]; then
            echo "The machine was killed after $limit seconds"
            break
        fi
        sleep 0.2
    done
    end_machine
    wait "$machine" 2>/dev/null || true
    machine=
}
