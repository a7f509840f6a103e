# shellcheck shell=bash
# Boots a virtual machine and waits for its end.

readonly up_limit_kvm=10
readonly limit=${ORVEX_VM_LIMIT:-300}
machine=

end_machine() {
    [ -n "$machine" ] || return 0
    kill -KILL "$machine" 2>/dev/null || true
    wait "$machine" 2>/dev/null || true
    machine=
}
trap end_machine EXIT

# Whether acceleration is worth a try: there are machines with /dev/kvm on which nothing boots.
kvm_is_likely() {
    [ -r /dev/kvm ] && [ -w /dev/kvm ] && grep -qwE 'vmx|svm' /proc/cpuinfo
}

# start_machine DIRECTORY ACCELERATION: the console goes to console.log, the checks to results.
start_machine() {
    local directory=$1 accel=$2 cpu=qemu64,+rdrand
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

# Boots with acceleration, unless that does not come up soon: start_accelerated DIRECTORY
start_accelerated() {
    local directory=$1
    case ${ORVEX_VM_ACCEL:-} in
        kvm) ;;
        "") kvm_is_likely || return 1 ;;
        *) return 1 ;;
    esac
    start_machine "$directory" kvm
    await_machine "$directory/results" "$up_limit_kvm" && return
    end_machine
    return 1
}

# Boots the machine and waits for its end: run_machine DIRECTORY
run_machine() {
    local directory=$1 accel=kvm end=$((SECONDS + limit))
    if ! start_accelerated "$directory"; then
        accel=tcg
        start_machine "$directory" tcg
    fi
    echo "Booted Linux $(kernel_version "$directory/kernel") with $accel"
    while kill -0 "$machine" 2>/dev/null && [ $SECONDS -lt "$end" ]; do
        sleep 0.2
    done
    if kill -0 "$machine" 2>/dev/null; then
        echo "The machine was killed after $limit seconds"
    fi
    end_machine
}
