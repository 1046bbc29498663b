"""A full disk: commands on a disk that has room for the device and little more. Takes a mount
namespace of its own."""

import subprocess

import faults
from device import Device

COMMANDS = [command.split() for command in (
    "update", "import OUT/list.opml Z", "rename-category C Z", "save a 1 article OUT/page.html",
    "auto add b", "delete a", "feedlarkd --foreground")]
LEAST, PAGE = 160, 4  # KiB
ENOUGH = 4  # sizes in a row with which all went well


def on_disk(work, template, command, after, size):
    """How a command ended on a disk of this size, and what is wrong then; nothing where the device
    itself has no room."""
    folder = work / "disk"
    folder.mkdir(exist_ok=True)
    subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "disk", folder], check=True)
    try:
        try:
            device = Device(folder, template)
        except OSError:
            return None, []
        before = template.state()  # SQLite needs room to read
        status, out, err = faults.run(device, command)
        subprocess.run(["mount", "-o", "remount,size=100m", folder], check=True)
        wrong = device.faults()
        state = device.state()
        wrong += faults.judge(command, before, after, state, status, out + err, False)
        return status, wrong + faults.again(device, command, state, after)
    finally:
        subprocess.run(["umount", folder], check=True)


def torture(work, template, _step, report):
    cases = bad = 0
    for command in COMMANDS:
        own = faults.template_for(command, work, template)
        device = Device(work / "whole", own)
        faults.run(device, command)
        after = device.state()
        size, well = LEAST, 0
        while well < ENOUGH:
            status, wrong = on_disk(work, own, command, after, size)
            size += PAGE
            well = well + 1 if status == 0 else 0
            cases += status is not None
            if wrong:
                bad += 1
                report(f"{' '.join(command)}, a disk of {size - PAGE} KiB: {'; '.join(wrong)}")
    return cases, bad
