"""Reads MIDI files written by `tonalmancer-cli midi` with two independent parsers (mido and
midicsv) and compares what they find with the events worked out by hand for a small part.

Usage: check_with_parsers.py PATH/TO/tonalmancer-cli
Exit 0 on success, 1 on a mismatch, 77 when mido or midicsv is missing."""

import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import part_file as pf  # noqa: E402

try:
    import mido
except ImportError:
    print("SKIP: python3-mido is not installed")
    sys.exit(77)
if shutil.which("midicsv") is None:
    print("SKIP: midicsv is not installed")
    sys.exit(77)

TICKS_PER_STEP = 24  # 96 / TPB 4
FAILURES = []


def check(condition, what):
    if not condition:
        FAILURES.append(what)
        print("FAIL:", what)


def demo_part():
    """Chord 0 (C E G) runs through "late": a silent first row, then a chord note, a fixed note
    and a chance cell. Chords 1 (A C E) and 2 (F A C) run through "block"."""
    block = pf.Pattern("block")
    block.put(0, 0, pf.CHORD_NOTE, 0).put(1, 0, pf.CHORD_NOTE, 1).put(2, 0, pf.CHORD_NOTE, 2)
    block.put(0, 2, pf.OFF)
    late = pf.Pattern("late")
    late.put(3, 1, pf.CHORD_NOTE, 2)
    late.put(4, 2, pf.FIXED_NOTE, 7)
    late.octaves[4] = 3  # track octave setting 3: octave 4, so G is note 55
    late.put(5, 3, pf.CHANCE, 0)
    chords = [("C", [0, 4, 7], 1, 4), ("Am", [9, 12, 16], 0, 4), ("F", [5, 9, 12], 0, 2)]
    return pf.part_text([block, late], chords, base_octave=5, bpm=120, tpb=4)


# What each step of the demo part does, worked out from its patterns (base octave 5: chord
# note 0 is 60). ("on", track, note) / ("off", track); "chance" draws random(50) for the cell.
DEMO_STEPS = [
    [],                                                      # C row 0: silent
    [("on", 3, 67)],                                         # C row 1: G
    [("on", 4, 55)],                                         # C row 2: fixed G, octave 4
    [("chance", 5, 60)],                                     # C row 3: C, with even odds
    [("on", 0, 69), ("on", 1, 72), ("on", 2, 76)],           # Am row 0
    [],
    [("off", 0)],                                            # Am row 2
    [],
    [("on", 0, 65), ("on", 1, 69), ("on", 2, 72)],           # F row 0: tracks 1, 2 replaced
    [],
]


def expected_events(steps, seed, velocity, channel):
    """The note events (absolute tick, kind, channel, note, velocity) of the note track, following the writer's rules: per track a note off for a replaced or
    stopped note, then the note on; velocity V - random(3) + n // 2 per message (V above 127 is
    used once, then 127); a silent first step shifts everything after it by one step; the notes
    still sounding stop one step after the last row with velocity V - 1."""
    rng = pf.Random(seed)
    sounding = {}
    events = []
    last_event_step = -1
    time = 0

    def emit(step, messages):
        nonlocal velocity, last_event_step, time
        for i, (kind, note) in enumerate(messages):
            if step != 0 and i == 0:
                time += (step - last_event_step) * TICKS_PER_STEP
            events.append((time, kind, channel, note, None))
        last_event_step = step if messages else last_event_step
        return messages

    for step, actions in enumerate(steps):
        messages = []
        for action in actions:
            if action[0] == "chance":
                if rng.random(50) >= 25:
                    continue
                action = ("on", action[1], action[2])
            track = action[1]
            if track in sounding:
                messages.append(("off", sounding.pop(track)))
            if action[0] == "on":
                sounding[track] = action[2]
                messages.append(("on", action[2]))
        start = len(events)
        emit(step, messages)
        for i in range(start, len(events)):
            t, kind, ch, note, _ = events[i]
            events[i] = (t, kind, ch, note, velocity - rng.random(3) + len(messages) // 2)
            if velocity > 127:
                velocity = 127
    finish = [("off", sounding[track]) for track in sorted(sounding)]
    start = len(events)
    emit(len(steps), finish)
    for i in range(start, len(events)):
        t, kind, ch, note, _ = events[i]
        events[i] = (t, kind, ch, note, velocity - 1)
    return events


def read_with_mido(path):
    midi = mido.MidiFile(path)
    tracks = []
    for track in midi.tracks:
        time = 0
        items = []
        for message in track:
            time += message.time
            if message.type in ("note_on", "note_off"):
                items.append((time, message.type[5:], message.channel, message.note,
                              message.velocity))
            elif message.type == "time_signature":
                items.append((time, "time_signature", message.numerator, message.denominator,
                              message.clocks_per_click, message.notated_32nd_notes_per_beat))
            elif message.type == "set_tempo":
                items.append((time, "tempo", message.tempo))
            elif message.type == "track_name":
                items.append((time, "name", message.name))
            elif message.type == "end_of_track":
                items.append((time, "end"))
            else:
                items.append((time, "other", message.type))
        tracks.append(items)
    return midi.type, midi.ticks_per_beat, tracks


def read_with_midicsv(path):
    output = subprocess.run(["midicsv", path], check=True, capture_output=True, text=True).stdout
    header = None
    tracks = {}
    for line in output.splitlines():
        fields = [f.strip() for f in line.split(",", 3)]
        track, time, kind = int(fields[0]), int(fields[1]), fields[2]
        rest = [f.strip() for f in fields[3].split(",")] if len(fields) > 3 else []
        if kind == "Header":
            header = [int(x) for x in rest]
            continue
        if kind in ("Start_track", "End_of_file"):
            continue
        items = tracks.setdefault(track, [])
        if kind in ("Note_on_c", "Note_off_c"):
            channel, note, velocity = (int(x) for x in rest)
            items.append((time, "on" if kind == "Note_on_c" else "off", channel, note, velocity))
        elif kind == "Time_signature":
            items.append((time, "time_signature") + tuple(int(x) for x in rest))
        elif kind == "Tempo":
            items.append((time, "tempo", int(rest[0])))
        elif kind == "Title_t":
            items.append((time, "name", fields[3].strip().strip('"')))
        elif kind == "End_track":
            items.append((time, "end"))
        else:
            items.append((time, "other", kind))
    return header, [tracks[k] for k in sorted(tracks)]


def run_cli(cli, folder, part_text, name, *options):
    part_path = os.path.join(folder, name + ".prt")
    with open(part_path, "w") as f:
        f.write(part_text)
    out_path = os.path.join(folder, name + ".mid")
    result = subprocess.run([cli, "midi", "--part", part_path, "-o", out_path] + list(options),
                            capture_output=True, text=True)
    check(result.returncode == 0, f"{name}: exit {result.returncode}: {result.stderr.strip()}")
    check(result.stdout == "", f"{name}: prints nothing on success")
    return out_path


def compare(name, got, want):
    check(got == want, f"{name}:\n  got  {got}\n  want {want}")


def main():
    cli = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        # The whole part, tempo written, channel 2, velocity 96.
        seed = 1234
        path = run_cli(cli, folder, demo_part(), "whole", "--write-bpm", "--channel", "2",
                       "--velocity", "96", "--seed", str(seed))
        notes = expected_events(DEMO_STEPS, seed, 96, 2)
        # L = 10 rows: the tempo track ends at (10 + 1) steps; so does the note track, since
        # the silent first step delays everything by one step.
        tempo_track = [(0, "time_signature", 4, 16, 24, 8), (0, "tempo", 500000), (264, "end")]
        note_track = [(0, "name", "Tonalmancer track")] + notes + [(264, "end")]

        kind, division, tracks = read_with_mido(path)
        compare("mido header", (kind, division, len(tracks)), (1, 96, 2))
        compare("mido tempo track", tracks[0], tempo_track)
        compare("mido note track", tracks[1], note_track)

        header, csv_tracks = read_with_midicsv(path)
        compare("midicsv header", header, [1, 2, 96])
        # midicsv shows the time signature's bytes as they are: denominator byte 4.
        compare("midicsv tempo track",
                csv_tracks[0], [(0, "time_signature", 4, 4, 24, 8), (0, "tempo", 500000), (264, "end")])
        compare("midicsv note track", csv_tracks[1], note_track)

        # Chords 1..2 only, first step sounding, velocity 128 (stored once as it is), no tempo.
        seed = 77
        path = run_cli(cli, folder, demo_part(), "range", "--range", "1,2", "--channel", "9",
                       "--velocity", "128", "--seed", str(seed))
        notes = expected_events(DEMO_STEPS[4:], seed, 128, 9)
        # No silent first step: every event sits one step earlier than above.
        header, csv_tracks = read_with_midicsv(path)
        compare("range header", header, [1, 2, 96])
        compare("range tempo track", csv_tracks[0], [(0, "time_signature", 4, 4, 24, 8), (168, "end")])
        compare("range note track", csv_tracks[1],
                [(0, "name", "Tonalmancer track")] + notes + [(144, "end")])
        rng = pf.Random(seed)
        check(notes[0][4] == 128 - rng.random(3) + 3 // 2, "range: the first note uses 128")
        check(notes[-1][4] == 126, "range: the closing note offs use 127 - 1")

    if FAILURES:
        print(f"{len(FAILURES)} check(s) failed")
        return 1
    print("all MIDI files read back as expected by mido and midicsv")
    return 0


if __name__ == "__main__":
    sys.exit(main())
