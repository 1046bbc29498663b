# Completion of tidebrookctl for fish. The program itself knows what may follow.

function __tidebrookctl_complete
    set -l words (commandline --tokenize --current-process --cut-at-cursor |
        string replace --regex '^~(?=/)' $HOME)
    set -l current (commandline --current-token --cut-at-cursor)
    $words[1] complete -- $words[2..] $current 2>/dev/null | while read --local --delimiter \t text about
        if test -n "$text"
            printf '%s\t%s\n' $text $about
        else if test $about = DIR
            __fish_complete_directories $current ''
        else
            __fish_complete_path $current
        end
    end
end

complete --command tidebrookctl --no-files --arguments '(__tidebrookctl_complete)'
