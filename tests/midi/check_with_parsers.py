# Reads MIDI files written by `tonalmancer-cli midi` with two independent parsers (mido and
# midicsv) and compares what they find with the events worked out by hand for a small part.
# Usage: check_with_parsers.py PATH/TO/tonalmancer-cli
# Exit 0 on success, 1 on a mismatch, 77 when mido or midicsv is missing.

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

TRACK_NAME = (0, "name", "Tonalmancer track")
FAILURES = []


def demo_part():
    # Chord 0 (C E G) runs through "late": a silent first row, then a chord note, a fixed note
    # and a chance cell. Chords 1 (A C E) and 2 (F A C) run through "block".
    block = pf.Pattern("block")
    block.put(0, 0, pf.CHORD_NOTE, 0).put(1, 0, pf.CHORD_NOTE, 1).put(2, 0, pf.CHORD_NOTE, 2)
    block.put(0, 2, pf.OFF)
    late = pf.Pattern("late")
    late.put(3, 1, pf.CHORD_NOTE, 2).put(4, 2, pf.FIXED_NOTE, 7).put(5, 3, pf.CHANCE, 0)
    late.octaves[4] = 3  # track octave setting 3: octave 4, so G is note 55
    chords = [("C", [0, 4, 7], 1, 4), ("Am", [9, 12, 16], 0, 4), ("F", [5, 9, 12], 0, 2)]
    return pf.part_text([block, late], chords, base_octave=5, bpm=120, tpb=4)


# What each step of the demo part does, worked out from its patterns (base octave 5: chord
# note 0 is 60). ("on", track, note) / ("off", track); "chance" draws random(50) for the cell.
# Rows: C 0 silent, 1 G, 2 fixed G (octave 4), 3 C with even odds; Am 0 the triad, 2 track 0
# off; F 0 the triad (replacing the notes of tracks 0..2).
DEMO_STEPS = [[], [("on", 3, 67)], [("on", 4, 55)], [("chance", 5, 60)],
              [("on", 0, 69), ("on", 1, 72), ("on", 2, 76)], [], [("off", 0)], [],
              [("on", 0, 65), ("on", 1, 69), ("on", 2, 72)], []]


# The note events (absolute tick, kind, channel, note, velocity) of the note track, following
# the writer's rules: per track a note off for a replaced or stopped note, then the note on;
# velocity V - random(3) + n // 2 per message (V above 127 is used once, then 127), stored
# within 1..127 (0..127 for a note off) as a MIDI data byte must be; a silent
# first step shifts everything after it by one step; the notes still sounding stop one step
# after the last row with velocity V - 1.
def expected_events(steps, seed, velocity, channel):
    rng = pf.Random(seed)
    sounding, events, time, last_step = {}, [], 0, -1
    for step, actions in enumerate(steps + [None]):
        messages = []
        for kind, track, *note in actions or []:
            if kind == "chance" and rng.random(50) >= 25:
                continue
            if track in sounding:
                messages.append(("off", sounding.pop(track)))
            if kind != "off":
                sounding[track] = note[0]
                messages.append(("on", note[0]))
        if actions is None:  # the end
            messages = [("off", sounding[track]) for track in sorted(sounding)]
        if not messages:
            continue
        time += (step - last_step) * 24 if step else 0  # 96 / TPB 4 ticks a step
        last_step = step
        for kind, note in messages:
            value = (velocity - 1 if actions is None
                     else velocity - rng.random(3) + len(messages) // 2)
            events.append((time, kind, channel, note, min(max(value, kind == "on"), 127)))
            velocity = min(velocity, 127)
    return events


# mido's message type: our name for it, then the fields to read, in midicsv's order.
MIDO_FIELDS = {"note_on": ("on", "channel", "note", "velocity"),
               "note_off": ("off", "channel", "note", "velocity"),
               "time_signature": ("time_signature", "numerator", "denominator", "clocks_per_click",
                                  "notated_32nd_notes_per_beat"),
               "set_tempo": ("tempo", "tempo"), "track_name": ("name", "name"),
               "end_of_track": ("end",), "marker": ("marker", "text")}


def read_with_mido(path):
    midi = mido.MidiFile(path)
    tracks = []
    for track in midi.tracks:
        time, items = 0, []
        for message in track:
            time += message.time
            name, *fields = MIDO_FIELDS.get(message.type, ("other " + message.type,))
            items.append((time, name) + tuple(getattr(message, f) for f in fields))
        tracks.append(items)
    return (midi.type, midi.ticks_per_beat, len(tracks)), tracks


MIDICSV_NAMES = {"Note_on_c": "on", "Note_off_c": "off", "Time_signature": "time_signature",
                 "Tempo": "tempo", "Title_t": "name", "End_track": "end", "Marker_t": "marker"}


def read_with_midicsv(path):
    output = subprocess.run(["midicsv", path], check=True, capture_output=True, text=True).stdout
    header, tracks = None, {}
    for line in output.splitlines():
        track, time, kind, *rest = (f.strip() for f in line.split(","))
        values = tuple(int(x) if x.isdigit() else x.strip('"') for x in rest)
        if kind == "Header":
            header = list(values)
        elif kind not in ("Start_track", "End_of_file"):
            item = (int(time), MIDICSV_NAMES.get(kind, "other " + kind)) + values
            tracks.setdefault(int(track), []).append(item)
    return header, [tracks[k] for k in sorted(tracks)]


def compare(what, got, want):
    if got != want:
        FAILURES.append(what)
        print(f"FAIL: {what}:\n  got  {got}\n  want {want}")


def run_cli(cli, folder, name, *options):
    part_path, out_path = os.path.join(folder, "demo.prt"), os.path.join(folder, name + ".mid")
    with open(part_path, "w") as f:
        f.write(demo_part())
    result = subprocess.run([cli, "midi", "--part", part_path, "-o", out_path] + list(options),
                            capture_output=True, text=True)
    compare(f"{name}: exit code and output ({result.stderr.strip()})",
            (result.returncode, result.stdout), (0, ""))
    return out_path


# With --markers the tempo track names the sequence (after the file, the part having no name)
# and marks every chord's start with its name: C at step 0, Am at 4, F at 8 (24 ticks a step);
# the chord of length 0 never sounds and gets no marker. Each chord's notes start at its marker.
def check_markers(cli, folder):
    block = pf.Pattern("block")
    block.put(0, 0, pf.CHORD_NOTE, 0).put(1, 0, pf.CHORD_NOTE, 1).put(2, 0, pf.CHORD_NOTE, 2)
    chords = [("C", [0, 4, 7], 0, 4), ("Am", [9, 12, 16], 0, 4), ("Dm", [2, 5, 9], 0, 0),
              ("F", [5, 9, 12], 0, 2)]
    part_path, out_path = os.path.join(folder, "chords.prt"), os.path.join(folder, "Verse.mid")
    with open(part_path, "w") as f:
        f.write(pf.part_text([block], chords))
    result = subprocess.run([cli, "midi", "--part", part_path, "-o", out_path, "--markers"],
                            capture_output=True, text=True)
    compare(f"markers: exit code ({result.stderr.strip()})", result.returncode, 0)
    want = [(0, "name", "Verse"), (0, "time_signature", 4, 4, 24, 8), (0, "marker", "C"),
            (96, "marker", "Am"), (192, "marker", "F"), (264, "end")]
    header, tracks = read_with_midicsv(out_path)
    compare("markers: midicsv", tracks[0], want)
    _, tracks = read_with_mido(out_path)
    markers = [(time, text) for time, kind, *rest in tracks[0] if kind == "marker"
               for text in rest]
    compare("markers: mido", markers, [(0, "C"), (96, "Am"), (192, "F")])
    starts = sorted({time for time, kind, *_ in tracks[1] if kind == "on"})
    compare("markers: each chord's notes start at its marker", starts, [t for t, _ in markers])


def main():
    cli = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        # The whole part, tempo written, channel 2, velocity 96. L = 10 rows: the tempo track
        # ends at (10 + 1) steps; so does the note track, the silent first step delaying it.
        path = run_cli(cli, folder, "whole", "--write-bpm", "--channel", "2", "--velocity", "96",
                       "--seed", "1234")
        note_track = [TRACK_NAME] + expected_events(DEMO_STEPS, 1234, 96, 2) + [(264, "end")]
        tempo = [(0, "tempo", 500000), (264, "end")]
        compare("mido", read_with_mido(path),
                ((1, 96, 2), [[(0, "time_signature", 4, 16, 24, 8)] + tempo, note_track]))
        # midicsv shows the time signature's bytes as they are: denominator byte 4.
        compare("midicsv", read_with_midicsv(path),
                ([1, 2, 96], [[(0, "time_signature", 4, 4, 24, 8)] + tempo, note_track]))

        # Chords 1..2 only, first step sounding, velocity 128, no tempo: every event sits one
        # step earlier than above. The rule gives the first note 127 or more, stored as 127;
        # mido refuses a file with a data byte above 127.
        path = run_cli(cli, folder, "range", "--range", "1,2", "--channel", "9", "--velocity",
                       "128", "--seed", "77")
        notes = expected_events(DEMO_STEPS[4:], 77, 128, 9)
        tracks = [[(0, "time_signature", 4, 4, 24, 8), (168, "end")],
                  [TRACK_NAME] + notes + [(144, "end")]]
        compare("range", read_with_midicsv(path), ([1, 2, 96], tracks))
        try:
            compare("range: mido", read_with_mido(path)[1][1], tracks[1])
        except (OSError, ValueError) as error:
            compare("range: mido reads the file", str(error), "")
        compare("range: the first note is stored as 127, the closing note offs 127 - 1",
                (notes[0][4], notes[-1][4]), (127, 126))

        check_markers(cli, folder)

    print(f"{len(FAILURES)} check(s) failed" if FAILURES
          else "all MIDI files read back as expected by mido and midicsv")
    return 1 if FAILURES else 0


if __name__ == "__main__":
    sys.exit(main())
