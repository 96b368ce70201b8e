#!/usr/bin/env bash
# Runs smsutil on the bundled examples: what `make demo` shows a newcomer.
# Usage: scripts/demo.sh [path/to/smsutil]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
tool=${1:-$root/build/default/tools/smsutil/smsutil}
case $tool in /*) ;; *) tool=$PWD/$tool ;; esac
if [[ ! -x $tool ]]; then
    echo "demo: $tool is not built; run 'make build' first" >&2
    exit 1
fi
cd "$root"

smsutil() { "$tool" "$@"; }

# Prints a command as typed, then runs it.
run() {
    printf '\n$ %s\n' "$1"
    eval "$1"
}

section() { printf '\n== %s ==\n' "$1"; }

section "The tool"
run "smsutil --version"

section "A GSM 7-bit SMS-DELIVER (the euro sign and brackets come from the extension table)"
run "smsutil decode < examples/deliver_7bit.pdu"

section "A UCS-2 SMS-DELIVER from an alphanumeric sender"
run "smsutil decode < examples/deliver_ucs2.pdu"

section "Status reports: one delivered, one failed"
run "smsutil decode < examples/status_report.pdu"

section "The three parts of a long message: same reference, total 3, parts 1 to 3"
run "smsutil decode < examples/long_message.pdu"

section "A modem's answer to AT+CMGL=4 pasted as it is: each message read by the status its header gives"
run "smsutil decode < examples/cmgl_session.txt"

section "Long messages put back together: parts shuffled and one repeated, and a message whose part 2 never came"
run "smsutil join < examples/long_message_parts.pdu"

section "One PDU shown both ways: the standards-true decoder and the gateway's message interface (--compare)"
run "grep -v '^#' examples/deliver_ucs2.pdu | smsutil decode --compare"

section "The transport codec's view of one part, through the gateway's interface (--gateway --detail)"
run "grep -v '^#' examples/long_message.pdu | tail -1 | smsutil decode --gateway --detail"

section "A PDU the library refuses: the error names the cause, exit status 1"
run "smsutil decode 0891683119320400F00405812143F50000995060 || echo \"exit status \$?\""

section "A long Turkish text: the Turkish shift tables take fewer parts than UCS-2"
run "smsutil encode --to +905321234567 --lang none --ref 42 - < examples/turkish.txt | grep -c pdu"
run "smsutil encode --to +905321234567 --ref 42 - < examples/turkish.txt"
run "smsutil encode --to +905321234567 --ref 42 --at - < examples/turkish.txt | grep -v '^AT' | smsutil join"

section "The same text through the gateway's interface (ComposeSms), which sends it as UCS-2"
run "smsutil split --lang turkish - < examples/turkish.txt"
run "smsutil encode --gateway --to +905321234567 --smsc +8613912340000 --lang turkish --ref 42 --at - < examples/turkish.txt | grep -v '^AT' | smsutil decode --gateway --state 3"

section "An emoji: sent as one UCS-2 surrogate pair, read back as one character (--raw: ParseSms's bytes)"
run "smsutil encode --gateway --to +8613912345678 --smsc +8613912340000 --at 'See you at 8 👍' | grep -v '^AT' | smsutil decode --gateway --state 2 --raw"

section "A Turkish text forced to 7-bit through the gateway would not arrive as written: the lost character is named, exit status 1"
run "smsutil encode --gateway --to +905321234567 --smsc +8613912340000 --lang turkish --coding gsm7 'Kırmızı çiçek' || echo \"exit status \$?\""

section "The sample feature file's national 8-bit table setting"
run "smsutil xml get examples/optional_feature.xml configuration.FEATURE_SMS.lang_table"
run "smsutil xml url examples/optional_feature.xml configuration.FEATURE_SMS"

section "CDMA bearer data: JSON from octets, and the same octets from that JSON"
run "smsutil cdma decode 00032123400306261122231542080180"
run "smsutil cdma encode \"\$(smsutil cdma decode 00032123400306261122231542080180)\""

section "A usage error: one line on standard error, exit status 2"
run "smsutil encode --to 12a --smsc +905320000000 hi || echo \"exit status \$?\""
