# shellcheck shell=bash
# Completion of tidebrookctl for bash. The program itself knows what may follow. This takes the line
# apart as the shell would, without running anything in it, and quotes what is inserted.

# Takes a line apart into words, the last of which is to be completed. Sets words; quote, which is
# open at the end; head, the part of the last word before the place where the shell inserts; target,
# when a redirection goes to the last word; and mixed, when that has a variable or a closed quote, of
# which the shell replaces another part each time.
_tidebrookctl_split() {
    local line=$1 word='' isWord='' character next i
    words=() quote='' head='' target='' mixed=''
    for ((i = 0; i < ${#line}; ++i)); do
        character=${line:i:1} next=${line:i+1:1}
        if [[ $quote != "'" && $character == \\ ]]; then
            [[ $quote && $next != [\"\\\$\`] ]] && word+=\\
            word+=$next isWord=1
            ((++i))
        elif [[ $quote != "'" && $character == \$ &&
            ${line:i} =~ ^\$(\{([A-Za-z_][A-Za-z_0-9]*)\}|([A-Za-z_][A-Za-z_0-9]*)) ]]; then
            next=${BASH_REMATCH[2]}${BASH_REMATCH[3]}
            word+=${!next} isWord=1 mixed=1
            ((i += ${#BASH_REMATCH} - 1))
        elif [[ $quote && $character == "$quote" ]]; then
            quote='' mixed=1
        elif [[ $quote ]]; then
            word+=$character
        elif [[ $character == [\'\"] ]]; then
            quote=$character head=$word isWord=1
        elif [[ $character == [[:blank:]\<\>] ]]; then
            [[ $isWord && -z $target && $word$character != [0-9\&][\<\>] ]] && words+=("$word")
            [[ $character == [[:blank:]] ]] || target=1
            [[ $character == [[:blank:]] && $isWord ]] && target=''
            word='' isWord='' head='' mixed=''
        elif [[ $character == \~ && -z $isWord && $next == / ]]; then
            word=$HOME isWord=1
        else
            word+=$character isWord=1
            [[ $COMP_WORDBREAKS == *"$character"* ]] && head=$word
        fi
    done
    words+=("$word")
}

# Quotes a text for the place behind the quote that is open, if there is one.
_tidebrookctl_quoted() {
    local character i
    quoted=''
    for ((i = 0; i < ${#1}; ++i)); do
        character=${1:i:1}
        case $quote$character in
            "''") quoted+="'\\''" ;;
            '"!') quoted+="\"'!'\"" ;; # no backslash keeps the history out of this
            \"[\"\\\$\`]) quoted+=\\$character ;;
            [\'\"]? | [[:alnum:]_.,/+-]) quoted+=$character ;;
            *) quoted+=\\$character ;;
        esac
    done
    # The shell closes the quote, unless the text ends like that already.
    [[ $quote && $quoted == *"$quote" ]] && quoted+=$quote
}

_tidebrookctl() {
    local words quote head target mixed quoted text about
    COMPREPLY=()
    _tidebrookctl_split "${COMP_LINE:0:COMP_POINT}"
    if [[ $target || $mixed ]]; then
        compopt -o default
        return
    fi
    while IFS= read -r text; do
        about=${text#*$'\t'} text=${text%%$'\t'*}
        if [[ -z $text ]]; then
            compopt -o default # which is to complete files
            [[ $about == DIR ]] && compopt -o dirnames +o default
        elif [[ $text == "${words[-1]}"* ]]; then
            _tidebrookctl_quoted "${text#"$head"}"
            COMPREPLY+=("$quoted")
        fi
    done < <("${words[0]}" complete -- "${words[@]:1}" 2>/dev/null)
}

complete -F _tidebrookctl tidebrookctl
