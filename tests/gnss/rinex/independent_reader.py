"""Reads RINEX files of a simulated log with an independent reader, which knows RINEX alone, and
compares what it finds with the tables of the program.

usage: independent_reader.py TQX_PROGRAM
"""

import csv
import io
import pathlib
import subprocess
import sys
import tempfile

import georinex
import numpy

# Half of the last printed digit, and what doubles lose.
TOLERANCE = 0.00056


def tqx(program, *arguments):
    run = subprocess.run([program, *arguments], check=True, stdout=subprocess.PIPE)
    return run.stdout.decode()


def rows(text):
    """Dictionaries of a table, named by its columns without their units."""
    table = csv.reader(io.StringIO(text))
    names = [name.split(" ")[0] for name in next(table)]
    return [dict(zip(names, row)) for row in table]


def gnss_time(row):
    epoch = numpy.datetime64("1980-01-06T00:00:00", "ns")
    millis = int(row["WNc"]) * 604800000 + round(float(row["TOW"]) * 1000)
    return epoch + numpy.timedelta64(millis, "ms")


def check_observations(path, table):
    """Number of values compared; raises AssertionError at the first that differs."""
    count = 0
    letters = {"Range": "C", "Phase": "L", "Doppler": "D", "CN0": "S"}
    for system in "GREC":
        data = georinex.load(path, use=system)
        expected = [row for row in table if row["Satellite"][0] == system]
        assert expected, f"no observations of {system}"
        times = {time: i for i, time in enumerate(data.time.values)}
        satellites = {str(sv): i for i, sv in enumerate(data.sv.values)}
        values = {name: data[name].values for name in data.data_vars}
        found = 0
        for row in expected:
            for column, letter in letters.items():
                if not row[column]:
                    continue
                value = values[letter + row["Signal"]][times[gnss_time(row)],
                                                       satellites[row["Satellite"]]]
                assert abs(value - float(row[column])) < TOLERANCE, (row, column, value)
                found += 1
        all_of_them = sum(int(numpy.count_nonzero(~numpy.isnan(array)))
                          for name, array in values.items() if len(name) == 3)
        assert found == all_of_them, f"{system}: {found} of {all_of_them} values"
        count += found
    return count


# Names of the reader and of the table, with the factor between them.
PARAMETERS = {
    "G": ("LNAV", {"SVclockBias": ("a_f0", 1), "sqrtA": ("SQRT_A", 1), "Eccentricity": ("e", 1),
                   "M0": ("M_0", 1), "Toe": ("t_oe", 1), "TGD": ("Delay1", 1), "IODC": ("IODC", 1),
                   "GPSWeek": ("WNt_oe", 1), "TransTime": ("Transmitted", 1)}),
    "R": ("FDMA", {"SVclockBias": ("a_f0", 1), "X": ("X", 1), "dY": ("Vy", 1), "dZ2": ("Az", 1),
                   "FreqNum": ("Channel", 1)}),
    "E": ("INAV", {"SVclockBias": ("a_f0", 1), "sqrtA": ("SQRT_A", 1), "Omega0": ("OMEGA_0", 1),
                   "DataSrc": ("Sources", 1), "BGDe5b": ("Delay2", 1)}),
    "C": ("D1", {"SVclockBias": ("a_f0", 1), "sqrtA": ("SQRT_A", 1), "IDOT": ("IDOT", 1),
                 "Toe": ("t_oe", 1), "TGD1": ("Delay1", 1), "BDTWeek": ("WNt_oe", 1)}),
}


def check_navigation(path, table):
    count = 0
    for system, (message, names) in PARAMETERS.items():
        # Its last line of GLONASS, which came with 3.05, this reader does not know.
        data = georinex.load(path, use=system)
        satellites = [str(sv) for sv in data.sv.values]
        for row in table:
            if row["Satellite"][0] != system or row["Message"] != message:
                continue
            # A second message of the same time has a name of its own here.
            places = [i for i, name in enumerate(satellites)
                      if name.split("_")[0] == row["Satellite"]]
            time = numpy.datetime64(row["Reference"], "ns")
            at = list(data.time.values).index(time)
            for name, (column, factor) in names.items():
                expected = float(row[column]) * factor
                values = [float(data[name].values[at, i]) for i in places]
                assert any(abs(value - expected) <= 1e-11 * abs(expected) for value in values), (
                    row["Satellite"], name, expected, values)
                count += 1
    return count


def main():
    program = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        log = pathlib.Path(folder) / "log.tqx"
        files = pathlib.Path(folder) / "files"
        tqx(program, "simulate", "--duration", "600", "--rate", "0.1", "-o", str(log))
        tqx(program, "rinex", "-q", str(log), "-o", str(files))
        observations = check_observations(next(files.glob("*_MO.rnx")),
                                          rows(tqx(program, "observations", "-q", str(log))))
        navigation = check_navigation(next(files.glob("*_MN.rnx")),
                                      rows(tqx(program, "ephemerides", "-q", str(log))))
    assert observations > 10000 and navigation > 100, (observations, navigation)
    print(f"{observations} values of observations and {navigation} of ephemerides are the same")


main()
