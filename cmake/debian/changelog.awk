# Turns CHANGELOG.md into the Debian changelog of the package mifreader.
# -v maintainer='NAME <ADDRESS>'  -v date=DATE, of a version that is not released yet, in the form of e-mail
BEGIN { fill = "fmt -t -w 79" }

function close_entry()
{
    if (stamp == "")
        return
    close(fill)
    printf "\n -- %s  %s\n\n", maintainer, stamp
    fflush()
}

/^## / {
    close_entry()
    stamp = date
    if ($4 ~ /^[0-9]/)
        ("date -u -R -d " $4) | getline stamp
    printf "mifreader (%s) unstable; urgency=medium\n", substr($2, 2, length($2) - 2) | fill
}
stamp == "" { next }
/^### / { printf "\n  [ %s ]\n", $2 | fill }
/^- /   { print "  * " substr($0, 3) | fill }
/^  /   { print "  " $0 | fill }
END     { close_entry() }
