# Writes the description of a format that has grown: the one of this project with a second edition.
#
# usage: cmake -DDESCRIPTION=<folder> -DADDITIONS=<this folder> -DOUTPUT=<folder>
#              -P make_description.cmake
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE "${OUTPUT}")
file(MAKE_DIRECTORY "${OUTPUT}")
file(GLOB sources "${DESCRIPTION}/*.yaml")
file(COPY ${sources} "${ADDITIONS}/later.yaml" "${ADDITIONS}/ledger.txt" DESTINATION "${OUTPUT}")

# replace(<file> <start> <old> <new>): replaces the first <old> after <start>; both must be there.
function(replace name start old new)
    file(READ "${OUTPUT}/${name}" text)
    string(FIND "${text}" "${start}" begin)
    if(begin LESS 0)
        message(FATAL_ERROR "${name} has no '${start}'")
    endif()
    string(SUBSTRING "${text}" 0 ${begin} before)
    string(SUBSTRING "${text}" ${begin} -1 rest)
    string(FIND "${rest}" "${old}" at)
    if(at LESS 0)
        message(FATAL_ERROR "${name} has no '${old}' after '${start}'")
    endif()
    string(SUBSTRING "${rest}" 0 ${at} between)
    string(LENGTH "${old}" length)
    math(EXPR at "${at} + ${length}")
    string(SUBSTRING "${rest}" ${at} -1 after)
    file(WRITE "${OUTPUT}/${name}" "${before}${between}${new}${after}")
endfunction()

# append_fields(<file> <block> <text>): adds fields at the end of a block.
function(append_fields name block text)
    replace("${name}" "${block}\n" "\n\n" "\n${text}\n\n")
endfunction()

replace(order.yaml "registration:" "]" ", SpectrumScan, ScanBand, ScanBin, OperatorNote, ThermalState]")

# A field at the end.
append_fields(pvt.yaml "- block: DOP2"
    "    - {name: RDOP, type: f32, precision: 2, since: 1, edition: 2, text: relative dilution of precision}")

# A field after padding of earlier revisions, with padding of its own.
replace(pvt.yaml "- block: PVTGeodetic2\n"
    "    - {name: _padding2, type: u8, count: 1, offset: 95, only: 2}"
    "    - {name: _padding2, type: u8, count: 1, offset: 95, only: 2}
    - {name: ClockQuality, type: u16, since: 3, edition: 2}
    - {name: _padding3, type: u8, count: 2, only: 3, edition: 2}")

# A field of the entries that hold others.
replace(measurements.yaml "- sub: MeasEpochChannelType1\n" "    - {name: Type2, blocks:"
    "    - {name: Multipath, type: i16, unit: meter, scale: 0.001, none: -32768, since: 2, edition: 2}
    - {name: Type2, blocks:")

# Bits out of reserved ones: of a word, and a whole byte.
replace(measurements.yaml "- sub: MeasEpochChannelType1\n" "        - {name: Reserved1, at: 1}"
    "        - {name: Reserved1, at: 1}
        - {name: Replica, at: 1, edition: 2, symbols: no_yes}")
replace(measurements.yaml "- sub: MeasEpochChannelType1\n" "        - {name: Reserved, at: [4, 7]}"
    "        - {name: Reserved, at: [4, 7]}
        - {name: Quality, at: [5, 6], edition: 2}")
replace(measurements.yaml "- block: MeasEpoch2\n" "{name: Reserved, type: u8, offset: 19}"
    "{name: Reserved, type: u8, offset: 19, bits: [{name: Batch, at: [0, 7], edition: 2}]}")

# Bytes out of reserved ones.
replace(attitude.yaml "- block: AttEuler1\n" "    - {name: Reserved, type: u8, count: 3}"
    "    - {name: Latency, type: u16, unit: second, scale: 0.0001, none: 65535, takes: Reserved, differs: true, edition: 2}
    - {name: Reserved, type: u8, count: 3}")

# A sub-block for a block that has another already.
replace(status.yaml "- block: ReceiverStatus2\n" "\n\n- sub: AGCState"
    "
    - {name: NThermal, type: u8, since: 2, edition: 2, role: structure}
    - {name: ThermalLength, type: u8, unit: byte, since: 2, edition: 2}
    - {name: Thermal, blocks: ThermalState, count: NThermal, size: ThermalLength, since: 2, edition: 2}

- sub: AGCState")

# A named value.
replace(symbols.yaml "  antenna:" "{0: Main, 1: Aux1, 2: Aux2}"
    "
    - {value: 0, name: Main}
    - {value: 1, name: Aux1}
    - {value: 2, name: Aux2}
    - {value: 3, name: Aux3, edition: 2}")
