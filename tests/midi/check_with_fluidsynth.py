# Plays a MIDI file written by `tonalmancer-cli midi` through FluidSynth into a WAV file and
# checks that it is silent before the notes start and sounds while they should.
# Usage: check_with_fluidsynth.py PATH/TO/tonalmancer-cli
# Exit 0 on success, 1 on a failure, 77 when fluidsynth or the General MIDI soundfont is missing.

import array
import math
import os
import shutil
import subprocess
import sys
import tempfile
import wave

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import part_file as pf  # noqa: E402

SOUNDFONTS = ["/usr/share/sounds/sf2/TimGM6mb.sf2", "/usr/share/sounds/sf2/FluidR3_GM.sf2"]
RATE = 44100


def main():
    fluidsynth = shutil.which("fluidsynth")
    soundfont = next((s for s in SOUNDFONTS if os.path.exists(s)), None)
    if fluidsynth is None or soundfont is None:
        print("SKIP: fluidsynth or a General MIDI soundfont is missing")
        return 77

    # Eight silent rows, then a C major triad held for 16 rows. At 120 BPM and 4 rows a beat a
    # row lasts 125 ms; the silent first row delays the notes by one more row, so they sound
    # from row 9 (1.125 s) to row 25 (3.125 s).
    pattern = pf.Pattern("late chord")
    for track in range(3):
        pattern.put(track, 8, pf.CHORD_NOTE, track)
    with tempfile.TemporaryDirectory() as folder:
        part_path, midi_path, wav_path = (os.path.join(folder, "chord" + ext)
                                          for ext in (".prt", ".mid", ".wav"))
        with open(part_path, "w") as f:
            f.write(pf.part_text([pattern], [("C", [0, 4, 7], 0, 24)]))
        subprocess.run([sys.argv[1], "midi", "--part", part_path, "-o", midi_path, "--write-bpm",
                        "--velocity", "112", "--seed", "3"], check=True)
        subprocess.run([fluidsynth, "-ni", "-F", wav_path, "-r", str(RATE), soundfont, midi_path],
                       check=True, capture_output=True)
        with wave.open(wav_path, "rb") as wav:
            sample_bits = wav.getsampwidth() * 8
            channels = wav.getnchannels()
            samples = array.array("h", wav.readframes(wav.getnframes()))
            duration = wav.getnframes() / wav.getframerate()
    if sys.byteorder == "big":
        samples.byteswap()

    def rms(start_s, end_s):
        chunk = samples[int(start_s * RATE) * channels:int(end_s * RATE) * channels]
        return math.sqrt(sum(x * x for x in chunk) / len(chunk)) if chunk else 0.0

    onset = next((i // channels / RATE for i, x in enumerate(samples) if abs(x) > 100), math.nan)
    before, during, after = rms(0.0, 1.0), rms(1.2, 3.0), rms(3.6, 4.5)
    print(f"duration {duration:.2f} s, first sound at {onset:.3f} s, RMS before {before:.1f}, "
          f"while sounding {during:.1f}, after the note offs {after:.1f}")
    failures = [text for failed, text in [
        (sample_bits != 16, f"expected 16-bit samples, got {sample_bits}"),
        (duration < 3.5, "the rendering ends before the notes do"),
        (not 1.10 <= onset <= 1.16, "the chord does not start at 1.125 s"),
        (during < 20 * max(before, 1.0), "silence where the chord should sound"),
        (after > 5, "the chord still sounds after its note offs")] if failed]
    for failure in failures:
        print("FAIL:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
