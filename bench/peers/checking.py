"""What the readers must have done for their figures to count."""

LEFT_OUT = []  # what another reader did otherwise, a sentence each


def check(is_so, what):
    if not is_so:
        raise RuntimeError(f"not so: {what}")


def attempt(name, measure, *arguments):
    """What it returns. None if another reader than Tidebrook cannot be measured, which is noted."""
    try:
        return measure(*arguments)
    except RuntimeError as problem:
        if name == "tidebrook":
            raise
        LEFT_OUT.append(f"{name}: {problem}")
        print(f"left out: {LEFT_OUT[-1]}", flush=True)
        return None
