#!/usr/bin/env bash
# session.sh DIRECTORY: a session with zebcfg on the configuration file zebslapd.conf in that directory.
set -euo pipefail
cd "$1"
chmod o-r zebslapd.conf

# Shows what a user would type, and runs it. wanted is the exit status that it has to have.
run() {
    local wanted=$1 status=0
    printf '\n$ %s\n' "$2"
    bash -c "$2" 2>&1 || status=$?
    if [ "$status" -ne "$wanted" ]; then
        echo "session: the exit status is $status instead of $wanted"
        exit 1
    fi
}
say() { printf '\n# %s\n' "$*"; }
entry="'cn=Front End, cn=Configuration'"

say "What is there: one entry with two of its attributes, as LDIF."
run 0 "zebcfg -F zebslapd.conf search -LLL -b cn=Configuration -s base '(objectclass=*)' zeb-slapdPort zeb-slapdSizeLimit"
say "A value that the server would not take is refused, and nothing is changed."
run 21 "zebcfg -F zebslapd.conf set cn=Configuration zeb-slapdPort=70000"
run 0 "zebcfg -F zebslapd.conf describe zeb-slapdPort"
say "Two values in one step, and one more value for an attribute that has several."
run 0 "zebcfg -F zebslapd.conf -v set cn=Configuration zeb-slapdPort=1389 zeb-slapdSizeLimit=1000"
run 0 "zebcfg -F zebslapd.conf set --add $entry zeb-slapdSetenv=LDAPTLS_REQCERT=demand"
say "A new entry, from LDIF."
run 0 "printf '%s\n' 'dn: cn=Session, cn=Plug-ins, cn=Configuration' 'objectclass: zeb-slapdPluginEntry' 'cn: Session' | zebcfg -F zebslapd.conf add"
run 0 "zebcfg -F zebslapd.conf tree 'cn=Plug-ins, cn=Configuration'"
say "The configuration is made to match LDIF; the second time there is nothing to do."
printf '%s\n' 'dn: cn=Configuration' 'zeb-slapdPort: 1389' 'zeb-slapdWorkers: 32' >wanted.ldif
run 0 "cat wanted.ldif; zebcfg -F zebslapd.conf -v apply -f wanted.ldif"
run 0 "zebcfg -F zebslapd.conf -v apply -f wanted.ldif"
say "What has changed since the backup, entry by entry."
run 1 "zebcfg -F zebslapd.conf diff"
say "Everything that is wrong with a file, in one run; here with a misspelt word and a port of 0."
run 1 "sed -e 's/zeb-slapdSysLogLevel: m/zeb-slapdSysLogLevel: medium/' -e 's/zeb-slapdSecurePort: 636/zeb-slapdSecurePort: 0/' zebslapd.conf | zebcfg check -"
run 0 "zebcfg -F zebslapd.conf check"
say "A dry run checks a change, and shows it."
run 0 "zebcfg -F zebslapd.conf -n delete 'cn=Session, cn=Plug-ins, cn=Configuration'"
say "An entry gets another name, with all entries below it."
run 0 "zebcfg -F zebslapd.conf move 'cn=Session, cn=Plug-ins, cn=Configuration' 'cn=Watch, cn=Plug-ins, cn=Configuration'"
run 0 "zebcfg -F zebslapd.conf search -LLL '(&(cn=w*)(objectclass=zeb-slapdPlugin*))'"
say "The last change was a mistake: the backup comes back."
run 0 "zebcfg -F zebslapd.conf --yes restore"
run 32 "zebcfg -F zebslapd.conf get 'cn=Watch, cn=Plug-ins, cn=Configuration' cn"
